#pragma once

#include <string>

namespace NEditors {

/// What the frame of the editors asks of one before it takes anything over.
class IPropValidator {
 public:
  /// False: `message` tells what is wrong and `control` is where.
  virtual bool Check(std::wstring& message, int& control) const = 0;

 protected:
  ~IPropValidator() = default;
};

}  // namespace NEditors
