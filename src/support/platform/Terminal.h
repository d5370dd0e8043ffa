#pragma once

namespace kiv::platform {

// Standard error, or standard output, is shown to somebody on a terminal, the former on one that
// takes the sequences by which a line is written over.
bool errorIsTerminal();
bool outputIsTerminal();
// The terminal was opened for this process and goes with it: on Windows after a double click.
bool terminalIsOwn();

// Standard input and output are bytes as they stand: no line end is changed, and none of them ends
// the input. A terminal shows what is written as UTF-8, and is as before when the process ends.
void prepareStreams();

// Closing the terminal calls this, with a signal's number, in place of ending the process. On
// Windows it does so from a thread of its own, each time, for Ctrl-C, Ctrl-Break and the end of the
// session too; but for the first two the system ends the process some seconds later all the same.
void whenTerminalCloses(void (*action)(int));

} // namespace kiv::platform
