#include <gtest/gtest.h>

#include <functional>
#include <set>

#include "com/implements.h"
#include "common/array.h"
#include "common/hash_map.h"
#include "sdk/persistence.h"

namespace {

using NCom::ComPtr;

// An object that tells how many references it has, and calls back when it dies.
class Probe final : public NCom::Implements<NSdk::IPersistReader> {
 public:
  explicit Probe(std::function<void()> onDeath = {}) : mOnDeath(std::move(onDeath)) {}
  ~Probe() override {
    if (mOnDeath) mOnDeath();
  }
  HRESULT STDMETHODCALLTYPE ReadText(const wchar_t*, wchar_t**) override { return E_FAIL; }

  ULONG References() {
    AddRef();
    return Release();
  }

 private:
  std::function<void()> mOnDeath;
};

class HashMap : public testing::Test {
 protected:
  ComPtr<Probe> Store(std::uint32_t key) {
    auto object = NCom::Make<Probe>();
    EXPECT_EQ(mMap->Set(key, object->Identity()), S_OK) << key;
    return object;
  }

  IUnknown* Find(std::uint32_t key) {
    ComPtr<IUnknown> object;
    const HRESULT result = mMap->Lookup(key, NSdk::IidOf<IUnknown>(), object.ReceiveVoid());
    EXPECT_EQ(result, object ? S_OK : E_FAIL);
    return object.Get();
  }

  std::int32_t Count() {
    std::int32_t count = -1;
    EXPECT_EQ(mMap->GetCount(&count), S_OK);
    return count;
  }

  std::vector<IUnknown*> Values() {
    ComPtr<NSdk::IArray> array;
    EXPECT_EQ(mMap->GetValues(array.Receive()), S_OK);
    std::uint32_t count = 0;
    EXPECT_EQ(array->GetCount(&count), S_OK);
    std::vector<IUnknown*> values;
    for (std::uint32_t position = 0; position < count; ++position) {
      ComPtr<IUnknown> object;
      EXPECT_EQ(array->GetElement(position, NSdk::IidOf<IUnknown>(), object.ReceiveVoid()), S_OK);
      values.push_back(object.Get());
    }
    return values;
  }

  ComPtr<NSdk::IHashMap> mMap = NCommon::MakeHashMap();
};

TEST_F(HashMap, WithoutATableNothingIsStored) {
  const auto object = NCom::Make<Probe>();
  EXPECT_EQ(mMap->Set(1, object->Identity()), E_FAIL);
  EXPECT_EQ(Find(1), nullptr);
  EXPECT_TRUE(Values().empty());
  EXPECT_EQ(mMap->Clear(), S_OK);
  EXPECT_EQ(object->References(), 1u);
}

TEST_F(HashMap, ArgumentsAreChecked) {
  ASSERT_EQ(mMap->Resize(4), S_OK);
  EXPECT_EQ(mMap->Set(1, nullptr), E_INVALIDARG);
  EXPECT_EQ(mMap->Lookup(1, NSdk::IidOf<IUnknown>(), nullptr), E_INVALIDARG);
  EXPECT_EQ(mMap->GetTableSize(nullptr), E_INVALIDARG);
  EXPECT_EQ(mMap->GetValues(nullptr), E_INVALIDARG);
  EXPECT_EQ(mMap->Remove(1), E_FAIL);
  EXPECT_EQ(mMap->GetKeys(nullptr), E_FAIL);
  for (const std::int32_t size : {-1, INT32_MIN, INT32_MAX, NCommon::kMaxHashMapSize + 1}) {
    EXPECT_EQ(mMap->Resize(size), E_OUTOFMEMORY) << size;
  }
  std::int32_t size = 0;
  EXPECT_EQ(mMap->GetTableSize(&size), S_OK);
  EXPECT_EQ(size, 4) << "a refused size changes nothing";
  const auto object = Store(7);
  void* none = nullptr;
  EXPECT_EQ(mMap->Lookup(7, NSdk::IidOf<NSdk::IPersistWriter>(), &none), E_NOINTERFACE);
  EXPECT_EQ(object->References(), 2u);
}

TEST_F(HashMap, ProbesInStepsOfFive) {
  ASSERT_EQ(mMap->Resize(10), S_OK);
  const auto late = Store(13);    // slot 3
  const auto moved = Store(3);    // slot 3 is taken: 8
  const auto early = Store(0);    // slot 0
  const auto between = Store(5);  // slot 5
  EXPECT_EQ(Values(), (std::vector<IUnknown*>{early->Identity(), late->Identity(), between->Identity(),
                                              moved->Identity()}));
  EXPECT_EQ(Find(3), moved->Identity());
  EXPECT_EQ(Find(13), late->Identity());
  EXPECT_EQ(Find(23), nullptr) << "both of its slots are taken";
  const auto refused = NCom::Make<Probe>();
  EXPECT_EQ(mMap->Set(23, refused->Identity()), E_FAIL);
  EXPECT_EQ(refused->References(), 1u);
  EXPECT_EQ(Count(), 4);
}

TEST_F(HashMap, ProbeWrapsAroundThirtyTwoBits) {
  ASSERT_EQ(mMap->Resize(3), S_OK);
  // FFFFFFFF mod 3 = 0; its second candidate is 4 mod 3 = 1, not 2 as without the wrap.
  const auto first = Store(0);
  const auto second = Store(0xFFFFFFFF);
  const auto third = Store(2);
  EXPECT_EQ(Values(), (std::vector<IUnknown*>{first->Identity(), second->Identity(), third->Identity()}));
  EXPECT_EQ(Find(0xFFFFFFFF), second->Identity());
}

TEST_F(HashMap, SettingAKeyAgainReplacesItsObject) {
  ASSERT_EQ(mMap->Resize(2), S_OK);
  const auto first = Store(1);
  EXPECT_EQ(first->References(), 2u);
  const auto second = Store(1);
  EXPECT_EQ(first->References(), 1u);
  EXPECT_EQ(Find(1), second->Identity());
  EXPECT_EQ(Count(), 1);
  EXPECT_EQ(mMap->Set(1, second->Identity()), S_OK);
  EXPECT_EQ(second->References(), 2u);
  EXPECT_EQ(mMap->Clear(), S_OK);
  EXPECT_EQ(second->References(), 1u);
  EXPECT_EQ(Count(), 0);
  std::int32_t size = 0;
  EXPECT_EQ(mMap->GetTableSize(&size), S_OK);
  EXPECT_EQ(size, 2);
}

TEST_F(HashMap, ResizeMovesTheObjects) {
  ASSERT_EQ(mMap->Resize(4), S_OK);
  const auto one = Store(1), two = Store(2), six = Store(6);
  ASSERT_EQ(mMap->Resize(7), S_OK);
  EXPECT_EQ(Values(), (std::vector<IUnknown*>{one->Identity(), two->Identity(), six->Identity()}));
  EXPECT_EQ(Find(6), six->Identity());
  EXPECT_EQ(six->References(), 2u);
  EXPECT_EQ(Count(), 3);
}

// Each object without a place shortens the walk, so the last slots are forgotten with their references.
TEST_F(HashMap, ResizeToAnyFewerSlotsDropsAndForgets) {
  // Keys 0..5 stand in their own slots of a table of 6.
  const struct {
    std::int32_t size;
    std::set<std::uint32_t> moved, released;
  } rows[] = {
      {0, {}, {0, 1, 2}},                                   // walked 0 to 2; 3 to 5 forgotten
      {1, {0}, {1, 2, 3}},                                  // 0 has a place; after three drops the bound is 3
      {2, {0, 1}, {2, 3}},         {4, {0, 1, 2, 3}, {4}},  // the bound falls to 5 at slot 4
      {5, {0, 1, 2, 3, 4}, {5}},  // every fifth slot only: 5 has no place but slot 0
      {6, {0, 1, 2, 3, 4, 5}, {}},
  };
  for (const auto& row : rows) {
    mMap = NCommon::MakeHashMap();
    ASSERT_EQ(mMap->Resize(6), S_OK);
    std::vector<ComPtr<Probe>> objects;
    for (std::uint32_t key = 0; key < 6; ++key) objects.push_back(Store(key));
    ASSERT_EQ(mMap->Resize(row.size), S_OK);
    EXPECT_EQ(Count(), 6) << "the count is not changed";
    for (std::uint32_t key = 0; key < 6; ++key) {
      IUnknown* const expected = row.moved.contains(key) ? objects[key]->Identity() : nullptr;
      EXPECT_EQ(Find(key), expected) << key << " in " << row.size;
    }
    EXPECT_EQ(mMap->Clear(), S_OK);
    for (std::uint32_t key = 0; key < 6; ++key) {
      const bool forgotten = !row.moved.contains(key) && !row.released.contains(key);
      EXPECT_EQ(objects[key]->References(), forgotten ? 2u : 1u) << key << " in " << row.size;
      if (objects[key]->References() == 2) objects[key]->Release();
    }
  }
}

TEST_F(HashMap, SurvivesObjectsThatComeBackWhenTheyDie) {
  ASSERT_EQ(mMap->Resize(4), S_OK);
  NSdk::IHashMap* const map = mMap.Get();
  const auto keepShrinking = [map] { map->Resize(2); };
  const auto store = [&](std::uint32_t key) {
    const auto dying = NCom::Make<Probe>(keepShrinking);
    ASSERT_EQ(mMap->Set(key, dying->Identity()), S_OK);
  };
  store(0);
  const auto replacing = Store(0);
  EXPECT_EQ(Find(0), replacing->Identity());
  store(1);
  EXPECT_EQ(mMap->Clear(), S_OK);
  store(1);
  EXPECT_EQ(mMap->Resize(0), S_OK);
}

TEST(Array, HandsOutItsElements) {
  const auto first = NCom::Make<Probe>(), last = NCom::Make<Probe>();
  auto array = NCommon::MakeArray({first->Identity(), last->Identity()});
  EXPECT_EQ(first->References(), 2u);
  ComPtr<NSdk::IPersistReader> element;
  const auto& iid = NSdk::IidOf<NSdk::IPersistReader>();
  EXPECT_EQ(array->GetElement(0, iid, element.ReceiveVoid()), S_OK);
  EXPECT_EQ(element.Get(), first.Get());
  EXPECT_EQ(array->GetLast(iid, element.ReceiveVoid()), S_OK);
  EXPECT_EQ(element.Get(), last.Get());
  EXPECT_EQ(array->GetElement(2, iid, element.ReceiveVoid()), E_INVALIDARG);
  EXPECT_EQ(array->GetElement(0xFFFFFFFF, iid, element.ReceiveVoid()), E_INVALIDARG);
  EXPECT_EQ(array->GetElement(0, iid, nullptr), E_INVALIDARG);
  EXPECT_EQ(array->GetElement(0, NSdk::IidOf<NSdk::IArray>(), element.ReceiveVoid()), E_NOINTERFACE);
  array.Reset();
  EXPECT_EQ(first->References(), 1u);

  const auto empty = NCommon::MakeArray({});
  EXPECT_EQ(empty->GetLast(iid, element.ReceiveVoid()), E_FAIL);
  EXPECT_EQ(empty->GetElement(0, iid, element.ReceiveVoid()), E_INVALIDARG);
}

}  // namespace
