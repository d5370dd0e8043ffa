// glibc 2.35 gave hypot a second version, which leaves errno alone, and the same digits. Bound to
// the first one, the library runs with an older C library, too. The linker sends the calls here:
// --wrap=hypot.
#if defined(__x86_64__)
__asm__(".symver kiv_first_hypot, hypot@GLIBC_2.2.5");
#elif defined(__aarch64__)
__asm__(".symver kiv_first_hypot, hypot@GLIBC_2.17");
#endif

extern "C" double kiv_first_hypot(double x, double y);
// NOLINTBEGIN(bugprone-reserved-identifier): the linker's name
extern "C" double __wrap_hypot(double x, double y);

extern "C" double __wrap_hypot(double x, double y) {
    return kiv_first_hypot(x, y);
}
// NOLINTEND(bugprone-reserved-identifier)
