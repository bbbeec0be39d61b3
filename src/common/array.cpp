#include "common/array.h"

#include <utility>

#include "com/entry.h"
#include "com/implements.h"

namespace NCommon {
namespace {

class ZArray final : public NCom::Implements<NSdk::IArray> {
 public:
  explicit ZArray(std::vector<NCom::ComPtr<IUnknown>> objects) : mObjects(std::move(objects)) {}

  HRESULT STDMETHODCALLTYPE GetCount(std::uint32_t* count) override {
    NCom::ModuleScope scope;
    if (!count) return E_INVALIDARG;
    *count = static_cast<std::uint32_t>(mObjects.size());
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetElement(std::uint32_t position, REFIID iid, void** object) override {
    NCom::ModuleScope scope;
    if (!object || position >= mObjects.size()) return E_INVALIDARG;
    return mObjects[position]->QueryInterface(iid, object);
  }

  HRESULT STDMETHODCALLTYPE GetLast(REFIID iid, void** object) override {
    NCom::ModuleScope scope;
    if (!object) return E_INVALIDARG;
    if (mObjects.empty()) return E_FAIL;
    return mObjects.back()->QueryInterface(iid, object);
  }

 private:
  const std::vector<NCom::ComPtr<IUnknown>> mObjects;
};

}  // namespace

NCom::ComPtr<NSdk::IArray> MakeArray(std::vector<NCom::ComPtr<IUnknown>> objects) {
  return NCom::Make<ZArray>(std::move(objects)).Get();
}

}  // namespace NCommon
