#pragma once
// Numbers of commands in the menus, on the toolbar and in the table of keys.

namespace NWorkbench {

enum CommandId : int {
  kFileNew = 100,
  kFileOpen,
  kFileSave,
  kFileSaveAs,
  kFileExit,
  kMeasureStart,
  kMeasureStop,
  kOptionsChannels,
  kOptionsHalvard,
  kOptionsTesmond,
  kOptionsHexadecimal,
  kOptionsLargeIcons,
  kOptionsEnglish,
  kOptionsGerman,
  kWindowSetup,
  kWindowTrace,
  kWindowMessages,
  kWindowCascade,
  kWindowTile,
  kHelpAbout,
  kBlockOpen,
  kBlockConfigure,
  kBlockRemove,
  kTraceCopy,

  kFirstRecent = 300,
  kLastRecent = 309,
  kFirstPlugInCommand = 1000,  ///< behind it, the position in the registry
  kLastPlugInCommand = 1999,
  kFirstDropDown = 2000,  ///< items that a plug-in's drop-down numbers itself
  kLastDropDown = 2999,
  kFirstChild = 50000,  ///< entries that the system adds for the windows inside
};

}  // namespace NWorkbench
