#pragma once

// Entry and exit of the static library. A shared library's loader does both by itself; a host that
// links the static one may do it here. The classes compute the same without.
#ifdef KIV_STATIC
namespace kiv {

// Initialises the library's application object and puts it into the list of modules, once however
// often it is called. False: not initialised. One thread at a time.
bool enterModule();
// Undoes it; does nothing where the module was not entered.
void leaveModule();

} // namespace kiv
#endif
