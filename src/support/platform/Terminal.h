#pragma once

namespace kiv::platform {

// Standard error, or standard output, is shown to somebody on a terminal.
bool errorIsTerminal();
bool outputIsTerminal();

// Standard input and output are bytes as they stand: no line end is changed, and none of them ends
// the input.
void makeStreamsBinary();

// Closing the terminal calls this, with a signal's number, in place of ending the process. On
// Windows it does so from a thread of its own, each time, for Ctrl-C, Ctrl-Break and the end of the
// session too; but for the first two the system ends the process some seconds later all the same.
void whenTerminalCloses(void (*action)(int));

} // namespace kiv::platform
