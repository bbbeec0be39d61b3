#pragma once

#include <span>

#include "com/class_table.h"

namespace NPlugin {

/// The module's application object: owns the class table from load to unload.
class ZPlugInApp {
 public:
  ZPlugInApp();
  ZPlugInApp(const ZPlugInApp&) = delete;
  ZPlugInApp& operator=(const ZPlugInApp&) = delete;

  /// After loading: runs the initialisation of every class, in the order of the table.
  bool InitInstance();
  /// Before unloading: releases the factories and whatever they keep.
  void ExitInstance();

  std::span<NCom::ClassRow> Classes() { return mClasses; }

 private:
  NCom::ClassRow mClasses[3];
};

ZPlugInApp& TheApp();

}  // namespace NPlugin
