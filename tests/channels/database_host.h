#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "com/com_ptr.h"
#include "com/implements.h"
#include "com/task_text.h"
#include "common/host_application.h"
#include "common/text.h"

namespace NTest {

// A host with CAN channels, and databases on some of them.
class DatabaseHost final
    : public NCom::Implements<NSdk::IHostApplication, NSdk::IConfigurationService, NSdk::IEventSource> {
 public:
  HRESULT STDMETHODCALLTYPE GetLanguage(std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetNumberBase(std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetVariant(std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE IsMeasuring(std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetService(REFIID iid, void** service) override {
    return QueryInterface(iid, service);
  }
  HRESULT STDMETHODCALLTYPE FindEventSource(REFIID, NSdk::IEventSource** source) override {
    return NCom::ComPtr<NSdk::IEventSource>(this).CopyTo(source);
  }

  HRESULT STDMETHODCALLTYPE GetItemCount(std::uint32_t, std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPath(wchar_t**) override { return S_FALSE; }
  HRESULT STDMETHODCALLTYPE GetCanChannel(std::uint32_t index, std::uint32_t* channel) override {
    if (index > channels.size()) return S_FALSE;
    *channel = channels[index - 1];
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetDatabase(std::uint32_t index, wchar_t** path,
                                        std::uint32_t* channel) override {
    if (index > databases.size()) return S_FALSE;
    *channel = databases[index - 1].second;
    ++queries;
    return NCom::HandOut(NCommon::PathToWide(databases[index - 1].first), path);
  }

  HRESULT STDMETHODCALLTYPE Advise(IUnknown* newSink, std::uint32_t* cookie) override {
    sink = NCom::QueryFor<NSdk::IDatabaseSetupEvents>(newSink);
    *cookie = 7;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Unadvise(std::uint32_t cookie) override {
    EXPECT_EQ(cookie, 7u);
    sink.Reset();
    return S_OK;
  }

  std::vector<std::uint32_t> channels;
  std::vector<std::pair<std::filesystem::path, std::uint32_t>> databases;
  int queries = 0;
  NCom::ComPtr<NSdk::IDatabaseSetupEvents> sink;
};

}  // namespace NTest
