#include "host/codescrldr/loader.h"

#include <new>

#include "host/codescrldr/description_reader.h"
#include "host/codescrldr/objects.h"
#include "host/runtime/com_guard.h"
#include "host/runtime/file_text.h"
#include "host/runtime/text.h"

namespace NDescriptions {
namespace {

using namespace CODESCRLDR;
using NRuntime::FileState;
using NRuntime::Guarded;
using NRuntime::HandOut;

constexpr std::size_t kLargestFile = 64u << 20;
constexpr std::uint32_t kMaxNode = 127;

Result CodeOf(FileState state) {
  if (state == FileState::Missing) return kFileMissing;
  return state == FileState::TooLarge ? kFileTooLarge : kFileUnreadable;
}

// What remains of a file that could not be used: why.
Description Failure(Result code, std::string reason) {
  Description empty;
  empty.findings.push_back({code, 0, std::move(reason)});
  return empty;
}

Description LoadFile(const std::filesystem::path& path, std::optional<std::uint32_t> nodeId) {
  const NRuntime::FileText file = NRuntime::ReadTextFile(path, kLargestFile);
  if (file.state != FileState::Read) return Failure(CodeOf(file.state), file.reason);
  Description description = ReadDescription(file.text, nodeId);
  if (description.isRecognised) return description;
  return Failure(kNotADescription, "not a device description: it has neither objects nor a list of objects");
}

class Loader final : public NRuntime::Implements<ZCODescrLdr> {
 public:
  HRESULT STDMETHODCALLTYPE SetNodeId(std::uint32_t nodeId) override {
    if (nodeId > kMaxNode) return E_INVALIDARG;
    mNodeId = nodeId != 0 ? std::optional(nodeId) : std::nullopt;
    return S_OK;
  }

  std::uint32_t STDMETHODCALLTYPE Load(const wchar_t* path) override {
    mContent = mNothing;
    if (!path) return kFileMissing;
    try {
      const std::string utf8 = NRuntime::ToUtf8(std::wstring_view(path));
      mPath = utf8;
      mContent = std::make_shared<const Description>(LoadFile(NRuntime::ToPath(utf8), mNodeId));
    } catch (const std::bad_alloc&) {
      return kOutOfMemory;
    } catch (...) {
      return kFileUnreadable;
    }
    return mContent->findings.empty() ? kLoaded : mContent->findings.front().code;
  }

  HRESULT STDMETHODCALLTYPE GetFindingCount(std::uint32_t* count) override {
    return HandOut(static_cast<std::uint32_t>(mContent->findings.size()), count);
  }

  HRESULT STDMETHODCALLTYPE GetFinding(std::uint32_t position, std::uint32_t* code, std::uint32_t* line,
                                       wchar_t** text) override {
    if (position >= mContent->findings.size()) return E_INVALIDARG;
    return Guarded([&] {
      const Finding& finding = mContent->findings[position];
      const std::string place = mPath + (finding.line != 0 ? ":" + std::to_string(finding.line) : "");
      const HRESULT result =
          text ? NRuntime::HandOutText(NRuntime::ToWide(place + ": " + finding.text), text) : S_OK;
      if (FAILED(result)) return result;
      if (code) *code = finding.code;
      if (line) *line = finding.line;
      return S_OK;
    });
  }

  HRESULT STDMETHODCALLTYPE GetObjects(ZCOObjectList** objects) override {
    return HandOutList(mContent, mContent->objects, objects);
  }

  HRESULT STDMETHODCALLTYPE GetNodeId(std::uint32_t* nodeId) override {
    return mContent->nodeId ? HandOut(*mContent->nodeId, nodeId) : S_FALSE;
  }

  HRESULT STDMETHODCALLTYPE GetBitRate(std::uint32_t* bitRate) override {
    return mContent->bitRate ? HandOut(*mContent->bitRate, bitRate) : S_FALSE;
  }

  HRESULT STDMETHODCALLTYPE GetInformation(const wchar_t* section, const wchar_t* key,
                                           wchar_t** text) override {
    if (!section || !key) return E_POINTER;
    return Guarded([&] {
      const auto name = [](const wchar_t* wide) { return NRuntime::ToUtf8(std::wstring_view(wide)); };
      const auto found = mContent->information.find(InformationKey(name(section), name(key)));
      if (found == mContent->information.end()) return S_FALSE;
      return NRuntime::HandOutText(NRuntime::ToWide(found->second), text);
    });
  }

 private:
  const Content mNothing = std::make_shared<const Description>();
  Content mContent = mNothing;
  std::optional<std::uint32_t> mNodeId;
  std::string mPath;
};

}  // namespace

NRuntime::ComPtr<ZCODescrLdr> MakeLoader() { return NRuntime::ComPtr<ZCODescrLdr>::Own(new Loader); }

}  // namespace NDescriptions
