#include <gmock/gmock.h>

#include <fstream>

#include "com/task_text.h"
#include "common/host_application.h"
#include "common/host_library.h"
#include "plugin/external_tools.h"
#include "plugin/language.h"
#include "tests/ig/fake_host.h"
#include "tests/test_folder.h"

namespace NTest {
namespace {

using NPlugin::ProgramStart;
using testing::ElementsAre;

// A host with a configuration in a folder of its own and somebody who reads messages.
class ToolHost final : public NCom::Implements<NSdk::IHostApplication, NSdk::IHostAutomation> {
 public:
  HRESULT STDMETHODCALLTYPE GetLanguage(std::uint32_t* value) override {
    if (language == 0) return E_FAIL;
    *value = language;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetNumberBase(std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetVariant(std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE IsMeasuring(std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetService(REFIID iid, void** service) override {
    if (SUCCEEDED(dialogs->QueryInterface(iid, service))) return S_OK;
    return iid == NSdk::IidOf<NSdk::IHostAutomation>() ? QueryInterface(iid, service) : E_NOINTERFACE;
  }
  HRESULT STDMETHODCALLTYPE FindEventSource(REFIID, NSdk::IEventSource**) override { return E_NOINTERFACE; }
  HRESULT STDMETHODCALLTYPE GetConfigurationPath(wchar_t** path) override {
    return configuration.empty() ? S_FALSE : NCom::HandOut(configuration.wstring(), path);
  }

  std::uint32_t language = 1;
  std::filesystem::path configuration;
  NCom::ComPtr<FakeDialogs> dialogs = NCom::Make<FakeDialogs>();
};

class ExternalTools : public testing::Test {
 protected:
  ExternalTools() {
    NCommon::SetHostApplication(host.Get());
    NPlugin::SetProgramStarter([this](const ProgramStart& start) {
      starts.push_back(start.program.filename().string() + "|" + start.parameters);
      programs.push_back(start);
      return starts.size() > failures;
    });
  }
  ~ExternalTools() override {
    NPlugin::SetProgramStarter(nullptr);
    NCommon::SetHostApplication(nullptr);
  }

  const NTest::TestFolder folder;
  const std::filesystem::path tools = NCommon::HostProgram().parent_path().parent_path() / "CANopen" / "";
  NCom::ComPtr<ToolHost> host = NCom::Make<ToolHost>();
  std::size_t failures = 0;
  std::vector<std::string> starts;
  std::vector<ProgramStart> programs;
};

TEST_F(ExternalTools, QuillonGetsTheLanguage) {
  host->language = 7;
  NPlugin::StartQuillon();
  EXPECT_THAT(starts, ElementsAre("Quillon.exe|-s -l 7"));
  EXPECT_EQ(programs[0].program, tools / "Quillon.exe");
  failures = 9;
  NPlugin::StartQuillon();
  const std::wstring path = (tools / "Quillon.exe").wstring();
  EXPECT_THAT(host->dialogs->messages, ElementsAre(L"Unable to open Quillon (Path: \"" + path + L"\")"));
  EXPECT_THAT(host->dialogs->icons, ElementsAre(NSdk::kMessageError));
}

TEST_F(ExternalTools, BrackwellGetsTheFolderThatHoldsItsFile) {
  const std::string ending = " -l 01 -quick 1";
  NPlugin::StartBrackwell();
  host->configuration = folder / "line 4.json";
  NPlugin::StartBrackwell();
  std::ofstream(folder / "brk.ini") << "\n";
  NPlugin::StartBrackwell();
  host->language = 0;
  NPlugin::StartBrackwell();
  EXPECT_THAT(starts, ElementsAre("brk.exe|-f \"\"" + ending, "brk.exe|-f \"\"" + ending,
                                  "brk.exe|-f \"" + folder.Path().string() + "\"" + ending,
                                  "brk.exe|-f \"" + folder.Path().string() + "\"" + ending));
  EXPECT_EQ(programs[0].folder, tools);
}

TEST_F(ExternalTools, BrackwellsViewerStepsIn) {
  failures = 1;
  NPlugin::StartBrackwell();
  EXPECT_THAT(starts, ElementsAre("brk.exe|-f \"\" -l 01 -quick 1", "brkviewer.exe|-f \"\" -l 01 -quick 1"));
  EXPECT_TRUE(host->dialogs->messages.empty());
  failures = 4;
  NPlugin::StartBrackwell();
  EXPECT_THAT(host->dialogs->messages,
              ElementsAre(L"Unable to open Brackwell (Directory: \"" + tools.wstring() + L"\")"));
}

TEST_F(ExternalTools, HelpIsFoundByLanguageOrInEnglish) {
  const std::filesystem::path module = folder / "Exec" / "Ostrel.hpi";
  EXPECT_EQ(NPlugin::FindHelpFile(module, 3), folder / "Help01" / "HalvardTesmond.chm");
  std::filesystem::create_directories(folder / "Help03");
  std::ofstream(folder / "Help03" / "HalvardTesmond.chm") << "\n";
  EXPECT_EQ(NPlugin::FindHelpFile(module, 3), folder / "Help03" / "HalvardTesmond.chm");
  EXPECT_EQ(NPlugin::FindHelpFile(module, 12), folder / "Help01" / "HalvardTesmond.chm");
}

TEST_F(ExternalTools, AProgramThatIsNotThereIsNotStarted) {
  EXPECT_FALSE(NPlugin::StartProgram({folder / "no such program.exe", "-x", folder}));
}

}  // namespace
}  // namespace NTest
