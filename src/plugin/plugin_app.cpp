#include "plugin/plugin_app.h"

#include "editors/item_editors.h"
#include "ig/generator_node.h"
#include "plugin/plug_in.h"
#include "scanner/scanner.h"
#include "sdk/class_ids.h"

namespace NPlugin {

ZPlugInApp::ZPlugInApp()
    : mClasses{NCom::MakeRow(NSdk::kProgIdPlugIn, NSdk::kClsidPlugIn, NCom::MakeSingletonFactory,
                             NCom::CreateObject<ZPlugIn>),
               NCom::MakeRow(NSdk::kProgIdCANopenScanner, NSdk::kClsidCANopenScanner,
                             NCom::MakeOrdinaryFactory, NCom::CreateObject<NScanner::ZCANopenScanner>),
               NCom::MakeRow(NSdk::kProgIdCANopenIG, NSdk::kClsidCANopenIG, NCom::MakeOrdinaryFactory,
                             NCom::CreateObject<NIg::ZCANopenIGNode>)} {}

bool ZPlugInApp::InitInstance() {
  NEditors::InstallItemEditors();
  NCom::InitialiseClasses(mClasses, /*starting=*/true);
  return true;
}

void ZPlugInApp::ExitInstance() { NCom::ReleaseFactories(mClasses); }

ZPlugInApp& TheApp() {
  static ZPlugInApp app;
  return app;
}

}  // namespace NPlugin
