#pragma once
// The module's own assertion: a required argument or member that is missing. It is a programming error and
// passes every guard of the module, up to the caller.

#include <stdexcept>
#include <string>

namespace NCom {

/// what() is E:"name", naming the argument.
class ZAssertion : public std::logic_error {
 public:
  explicit ZAssertion(const char* argument) : std::logic_error("E:\"" + std::string(argument) + "\"") {}
};

[[noreturn]] inline void RaiseAssertion(const char* argument) { throw ZAssertion(argument); }

/// Raises the assertion when the pointer is null.
template <class Pointer>
void Require(const Pointer& pointer, const char* argument) {
  if (pointer == nullptr) RaiseAssertion(argument);
}

}  // namespace NCom
