// The C++ run-time library that is inside this one sets memory aside for exceptions that are thrown
// when there is no more. Nobody else frees it when the library is unloaded.
namespace __gnu_cxx { // NOLINT(bugprone-reserved-identifier): its name
void __freeres();     // NOLINT(bugprone-reserved-identifier)
}

namespace {

const struct Unloading {
    ~Unloading() { __gnu_cxx::__freeres(); }
} unloading;

} // namespace
