#include "editors/typed_data.h"

#include <gtest/gtest.h>

#include "tests/editors/data_folder.h"

namespace {

using NTests::Bytes;
using NTests::DataFolder;
using NTests::Parse;

TEST(TypedData, TypeIsThePrefixAtTheFront) {
  const struct {
    const char* text;
    NEditors::DataType type;
    const char* stripped;
  } rows[] = {
      {"uint:1", NEditors::kDataUnsigned, "1"},         {"int:1", NEditors::kDataSigned, "1"},
      {"string:int:1", NEditors::kDataString, "int:1"}, {"bytearr:", NEditors::kDataByteArray, ""},
      {"file:a b", NEditors::kDataFile, "a b"},         {"float:1", NEditors::kDataFloat, "1"},
      {"double:1", NEditors::kDataDouble, "1"},         {"", NEditors::kDataUntyped, ""},
      {"UINT:1", NEditors::kDataUntyped, "UINT:1"},     {" uint:1", NEditors::kDataUntyped, " uint:1"},
      {"uint", NEditors::kDataUntyped, "uint"},
  };
  for (const auto& row : rows) {
    std::string text = row.text;
    EXPECT_EQ(NEditors::GetDataType(text), row.type) << row.text;
    NEditors::StripDataPrefix(text);
    EXPECT_EQ(text, row.stripped);
    NEditors::AddDataPrefix(text, row.type);
    EXPECT_EQ(text, row.text);
  }
}

TEST(TypedData, EncodesIntoTheWantedLength) {
  const struct {
    const char* text;
    std::uint32_t size;
    std::optional<Bytes> bytes;
  } rows[] = {
      {"", 2, {}},
      {"1234", 2, {}},
      // unsigned
      {"uint:4660", 2, Bytes{0x34, 0x12}},
      {"uint:0x1234", 1, Bytes{0x34}},
      {"uint:0X1234", 0, Bytes{}},
      {"uint:010", 2, Bytes{8, 0}},
      {"uint:0", 1, Bytes{0}},
      {"uint:08", 1, {}},
      {"uint: +5", 1, Bytes{5}},
      {"uint:5 ", 1, {}},
      {"uint:", 1, {}},
      {"uint:0x", 1, {}},
      {"uint:-5", 1, {}},
      {"uint:-0", 1, {}},
      {"uint:5-", 1, {}},
      {"uint:18446744073709551615", 9, Bytes{255, 255, 255, 255, 255, 255, 255, 255, 0}},
      {"uint:18446744073709551616", 8, {}},
      // signed
      {"int:-1", 2, Bytes{0xFF, 0xFF}},
      {"int:-1", 10, Bytes{255, 255, 255, 255, 255, 255, 255, 255, 0, 0}},
      {"int:-0x80", 2, Bytes{0x80, 0xFF}},
      {"int:-9223372036854775808", 8, Bytes{0, 0, 0, 0, 0, 0, 0, 0x80}},
      {"int:-9223372036854775809", 8, {}},
      {"int:9223372036854775808", 8, {}},
      {"int:0xFFFFFFFFFFFFFFFF", 8, {}},
      {"int:", 1, {}},
      {"int:--1", 1, {}},
      {"int:+-1", 1, {}},
      // string: bytes as they are
      {"string:", 2, Bytes{0, 0}},
      {"string:A\xE4 ", 5, Bytes{'A', 0xE4, ' ', 0, 0}},
      {"string:Hello", 2, Bytes{'H', 'e'}},
      // byte array
      {"bytearr:", 1, Bytes{0}},
      {"bytearr:123", 2, Bytes{0x01, 0x23}},
      {"bytearr:0x1234", 2, Bytes{0x12, 0x34}},
      {"bytearr:zz0xAb", 1, Bytes{0xAB}},
      {"bytearr:0X120x34", 1, Bytes{0x34}},
      {"bytearr:0x0X12", 2, {}},
      {"bytearr:1G", 1, {}},
      {"bytearr:-1", 1, {}},
      {"bytearr:12 34", 2, {}},
      {"bytearr: 1 2", 2, Bytes{1, 2}},
      // floating point: the length decides the width
      {"float:1.5", 4, Bytes{0, 0, 0xC0, 0x3F}},
      {"float:1.5", 8, Bytes{0, 0, 0, 0, 0, 0, 0xF8, 0x3F}},
      {"double:-2", 4, Bytes{0, 0, 0, 0xC0}},
      {"float:1.5", 5, {}},
      {"double:1.5", 0, {}},
      {"float:", 4, {}},
      {"float:1,5", 4, {}},
      {"float:1.5 ", 4, {}},
      {"float:1e39", 4, {}},
      {"float:1e39", 8, Bytes{0x1D, 0x4A, 0x9C, 0xF4, 0x87, 0x82, 0x07, 0x48}},
      {"float:1e-60", 4, Bytes{0, 0, 0, 0}},
      {"double:1e400", 8, {}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Parse(row.text, row.size), row.bytes) << row.text << " in " << row.size;
  }
  EXPECT_FALSE(Parse(std::string("uint:1\0002", 8), 1)) << "a zero byte does not end the text";
}

TEST(TypedData, EncodesFiles) {
  const DataFolder data;
  const struct {
    std::string name;
    std::uint32_t size;
    std::optional<Bytes> bytes;
  } rows[] = {
      {"four.bin", 6, Bytes{1, 0xFF, 'z', '\n', 0, 0}},
      {"four.bin", 2, Bytes{1, 0xFF}},
      {"folder/../four.bin", 1, Bytes{1}},
      {"folder/inner.bin", 2, Bytes{'i', 'n'}},
      {(data.Path() / "four.bin").string(), 1, Bytes{1}},
      {"empty.bin", 1, Bytes{0}},
      {"", 1, {}},
      {"missing.bin", 1, {}},
      {"folder", 1, {}},
      {std::string("four.bin\0x", 10), 1, {}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Parse("file:" + row.name, row.size, data.Path()), row.bytes) << row.name;
  }
  // Longer than one piece of reading, and not a multiple of it.
  std::string contents(200'001, '\0');
  for (std::size_t position = 0; position < contents.size(); ++position) {
    contents[position] = static_cast<char>(position * 7 % 251);
  }
  data.Write("long.bin", contents);
  for (const std::uint32_t size : {65536u, 65537u, 200'001u}) {
    EXPECT_EQ(Parse("file:long.bin", size, data.Path()), Bytes(contents.begin(), contents.begin() + size));
  }
  EXPECT_TRUE(Parse("string:", 200'000));
  EXPECT_FALSE(Parse("string:", NEditors::kMaxDataSize + 1));
  EXPECT_FALSE(Parse("file:long.bin", UINT32_MAX, data.Path()));
}

TEST(TypedData, ProposesTheNaturalLength) {
  constexpr std::uint32_t kInvalid = 0xFFFF;
  constexpr std::uint32_t kUntouched = 77;
  const DataFolder data;
  const struct {
    NEditors::DataType type;
    std::string value;
    std::uint32_t size;
  } rows[] = {
      {NEditors::kDataUnsigned, "", kUntouched},
      {NEditors::kDataUnsigned, "0", 1},
      {NEditors::kDataUnsigned, "255", 1},
      {NEditors::kDataUnsigned, "256", 2},
      {NEditors::kDataUnsigned, "0x0001", 1},
      {NEditors::kDataUnsigned, "0xFFFFFFFF", 4},
      {NEditors::kDataUnsigned, "0x100000000", 5},
      {NEditors::kDataUnsigned, "18446744073709551615", 8},
      {NEditors::kDataUnsigned, "18446744073709551616", kInvalid},
      {NEditors::kDataUnsigned, "-1", kInvalid},
      {NEditors::kDataUnsigned, "1 ", kInvalid},
      {NEditors::kDataSigned, "", kUntouched},
      {NEditors::kDataSigned, "127", 1},
      {NEditors::kDataSigned, "128", 2},
      {NEditors::kDataSigned, "255", 2},
      {NEditors::kDataSigned, "-128", 1},
      {NEditors::kDataSigned, "-129", 2},
      {NEditors::kDataSigned, "-9223372036854775808", 8},
      {NEditors::kDataSigned, "36028797018963967", 7},
      {NEditors::kDataSigned, "36028797018963968", 8},
      {NEditors::kDataSigned, "0x00FF", 2},
      {NEditors::kDataSigned, "0x0001", 2},
      {NEditors::kDataSigned, "0X1", 1},
      {NEditors::kDataSigned, "0x00000000000000000001", 10},
      {NEditors::kDataSigned, "-0x80", 1},
      {NEditors::kDataSigned, "0x", kInvalid},
      {NEditors::kDataSigned, "0x8000000000000000", kInvalid},
      {NEditors::kDataString, "", 0},
      {NEditors::kDataString, "uint:\xE4", 6},
      {NEditors::kDataByteArray, "", 0},
      {NEditors::kDataByteArray, "123", 2},
      {NEditors::kDataByteArray, "AbCdEf", 3},
      {NEditors::kDataByteArray, "0x12", kInvalid},
      {NEditors::kDataByteArray, "12 3", kInvalid},
      {NEditors::kDataFloat, "", kUntouched},
      {NEditors::kDataFloat, "1", 4},
      {NEditors::kDataDouble, "", kUntouched},
      {NEditors::kDataDouble, "1", 8},
      {NEditors::kDataFile, "", kUntouched},
      {NEditors::kDataFile, "four.bin", 4},
      {NEditors::kDataFile, "empty.bin", 0},
      {NEditors::kDataFile, "folder", kInvalid},
      {NEditors::kDataFile, "missing.bin", kInvalid},
      {NEditors::kDataUntyped, "12", kInvalid},
  };
  for (const auto& row : rows) {
    std::uint32_t size = kUntouched;
    const bool valid = NEditors::GetNaturalLength(row.value, row.type, size, data.Path());
    EXPECT_EQ(valid, row.size != kInvalid) << row.type << ' ' << row.value;
    EXPECT_EQ(size, valid ? row.size : kUntouched) << row.type << ' ' << row.value;
  }
  std::uint32_t size = kUntouched;
  const std::string absolute = (data.Path() / "four.bin").string();
  EXPECT_FALSE(NEditors::GetNaturalLength(absolute, NEditors::kDataFile, size, {})) << "no folder given";
}

}  // namespace
