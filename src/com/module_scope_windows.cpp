#include <windows.h>

#include "com/module_scope.h"

namespace NCom {
namespace {

constexpr int kManifestResource = 2;  // ISOLATIONAWARE_MANIFEST_RESOURCE_ID

HMODULE gHandle = nullptr;
HANDLE gContext = INVALID_HANDLE_VALUE;

HANDLE CreateContext(HMODULE handle) {
  wchar_t path[MAX_PATH] = {};
  if (GetModuleFileNameW(handle, path, MAX_PATH) == 0) return INVALID_HANDLE_VALUE;
  ACTCTXW context = {};
  context.cbSize = sizeof(context);
  context.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
  context.lpSource = path;
  context.lpResourceName = MAKEINTRESOURCEW(kManifestResource);
  context.hModule = handle;
  return CreateActCtxW(&context);
}

}  // namespace

ModuleScope::ModuleScope() {
  ULONG_PTR cookie = 0;
  if (gContext != INVALID_HANDLE_VALUE && ActivateActCtx(gContext, &cookie)) mCookie = cookie;
}

ModuleScope::~ModuleScope() {
  if (mCookie != 0) DeactivateActCtx(0, mCookie);
}

void SetModuleHandle(void* handle) {
  gHandle = static_cast<HMODULE>(handle);
  gContext = CreateContext(gHandle);
}

void* ModuleHandle() { return gHandle; }

void ReleaseModuleState() {
  if (gContext != INVALID_HANDLE_VALUE) ReleaseActCtx(gContext);
  gContext = INVALID_HANDLE_VALUE;
}

}  // namespace NCom
