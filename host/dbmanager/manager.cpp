#include "host/dbmanager/manager.h"

#include "host/dbmanager/database.h"
#include "host/dbmanager/dbc_reader.h"
#include "host/runtime/com_guard.h"
#include "host/runtime/file_text.h"
#include "host/runtime/text.h"

namespace NDatabases {
namespace {

using NRuntime::FileState;
using NRuntime::Guarded;

constexpr std::size_t kLargestFile = 32u << 20;

std::filesystem::path PathOf(const std::wstring& text) { return NRuntime::ToPath(NRuntime::ToUtf8(text)); }

HRESULT CodeOf(FileState state) {
  if (state == FileState::Missing) return NSdk::kDatabaseMissing;
  return state == FileState::TooLarge ? NSdk::kDatabaseTooLarge : NSdk::kDatabaseUnreadable;
}

class Manager final : public NRuntime::Implements<NSdk::IDatabaseManager> {
 public:
  HRESULT STDMETHODCALLTYPE SetConfiguration(NSdk::IConfigurationService* configuration) override {
    mConfiguration = configuration;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetDatabaseInfo(std::uint32_t index, wchar_t** path,
                                            std::uint32_t* channel) override {
    return Guarded([&] {
      std::wstring found;
      std::uint32_t foundChannel = NSdk::kUnknownChannel;
      const HRESULT result = Ask(index, found, foundChannel);
      if (result != S_OK) return result;
      const HRESULT handed = path ? NRuntime::HandOutText(found, path) : S_OK;
      if (SUCCEEDED(handed) && channel) *channel = foundChannel;
      return handed;
    });
  }

  HRESULT STDMETHODCALLTYPE OpenDatabase(std::uint32_t index, NSdk::ICanDatabase** database) override {
    return Guarded([&] {
      std::wstring path;
      std::uint32_t channel = 0;
      const HRESULT result = Ask(index, path, channel);
      if (result == S_OK) return Open(PathOf(path), database);
      mFailure = "there is no database " + std::to_string(index);
      return FAILED(result) ? result : E_INVALIDARG;
    });
  }

  HRESULT STDMETHODCALLTYPE OpenFile(const wchar_t* path, NSdk::ICanDatabase** database) override {
    if (!path) return E_POINTER;
    return Guarded([&] { return Open(PathOf(path), database); });
  }

  HRESULT STDMETHODCALLTYPE GetFailure(wchar_t** text) override {
    return Guarded([&] { return NRuntime::HandOutText(NRuntime::ToWide(mFailure), text); });
  }

 private:
  HRESULT Ask(std::uint32_t index, std::wstring& path, std::uint32_t& channel) const {
    if (!mConfiguration || index == 0) return S_FALSE;
    NRuntime::ReceivedText text;
    const HRESULT result = mConfiguration->GetDatabase(index, text.Out(), &channel);
    path = text.Text();
    return result;
  }

  HRESULT Open(const std::filesystem::path& path, NSdk::ICanDatabase** database) {
    if (!database) return E_POINTER;
    const auto refuse = [&](HRESULT code, const std::string& reason) {
      mFailure = NRuntime::PathText(path) + ": " + reason;
      return code;
    };
    mFailure.clear();
    const NRuntime::FileText file = NRuntime::ReadTextFile(path, kLargestFile);
    if (file.state != FileState::Read) return refuse(CodeOf(file.state), file.reason);
    Database content = ReadDbc(file.text);
    if (!content.isRecognised) return refuse(NSdk::kNotADatabase, "not a DBC file: it has no section of one");
    return MakeDatabase(path, std::move(content)).MoveTo(database);
  }

  NRuntime::ComPtr<NSdk::IConfigurationService> mConfiguration;
  std::string mFailure;
};

}  // namespace

NRuntime::ComPtr<NSdk::IDatabaseManager> MakeManager() {
  return NRuntime::ComPtr<NSdk::IDatabaseManager>::Own(new Manager);
}

}  // namespace NDatabases
