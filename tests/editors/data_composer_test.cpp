#include "editors/data_composer.h"

#include <gtest/gtest.h>

#include "tests/editors/data_folder.h"

namespace {

using NEditors::ComposerField;
using NEditors::DataComposer;
using NEditors::DataDefinition;
using NEditors::DataPurpose;
using NTests::DataFolder;

// Opens a text and ends with OK; a refusal is "value" or "size".
std::string Accepted(DataComposer& composer) {
  const auto answer = composer.Accept();
  if (answer.result) return answer.result->text;
  return answer.focus == ComposerField::Size ? "size" : "value";
}

TEST(DataComposer, TextsComeBackAsTheyWentIn) {
  const struct {
    const char* text;
    std::uint32_t size;
    const char* decimalValue;
    const char* decimalText;
    const char* hexadecimalValue;
    const char* hexadecimalText;
  } rows[] = {
      {"uint:4660", 2, "4660", "uint:4660", "1234", "uint:0x1234"},
      {"uint:0x1234", 2, "4660", "uint:4660", "1234", "uint:0x1234"},
      {"uint:0", 1, "0", "uint:0", "0", "uint:0x0"},
      {"uint:010", 2, "10", "uint:10", "A", "uint:0xa"},
      {"int:-1", 2, "-1", "int:-1", "FFFF", "int:0xffff"},
      {"int:-1", 8, "-1", "int:-1", "FFFFFFFFFFFFFFFF", "int:-1"},
      {"int:-010", 2, "-10", "int:-10", "FFF6", "int:0xfff6"},
      {"int:0x00FF", 2, "255", "int:255", "FF", "int:0xff"},
      {"string:Hello 0x", 8, "Hello 0x", "string:Hello 0x", "Hello 0x", "string:Hello 0x"},
      {"bytearr:0x12ab", 2, "0x12ab", "bytearr:0x12ab", "0x12ab", "bytearr:0x12ab"},
      {"float:1.5", 4, "1.5", "float:1.5", "1.5", "float:1.5"},
      {"double:-2e3", 8, "-2e3", "double:-2e3", "-2e3", "double:-2e3"},
      {"file:four.bin", 4, "four.bin", "file:four.bin", "four.bin", "file:four.bin"},
      {"12", 4, "12", "uint:12", "C", "uint:0xc"},  // without a type it is offered as an unsigned number
      {"uint:5 apples", 2, "5 apples", "value", "5 apples", "value"},
  };
  const DataFolder folder;
  for (const auto& row : rows) {
    for (const bool hexadecimal : {false, true}) {
      DataComposer composer({row.text, row.size, false},
                            {.hexadecimal = hexadecimal, .folder = folder.Path()});
      EXPECT_EQ(composer.Value(), hexadecimal ? row.hexadecimalValue : row.decimalValue) << row.text;
      EXPECT_EQ(Accepted(composer), hexadecimal ? row.hexadecimalText : row.decimalText) << row.text;
    }
  }
}

TEST(DataComposer, TakesWhatIsTyped) {
  const struct {
    bool hexadecimal;
    NEditors::DataType type;
    const char* value;
    const char* size;
    const char* result;
  } rows[] = {
      {false, NEditors::kDataUnsigned, "007", "1", "uint:7"},
      {false, NEditors::kDataUnsigned, "0x0FF", "1", "uint:0xff"},
      {false, NEditors::kDataUnsigned, "-5", "1", "value"},
      {false, NEditors::kDataUnsigned, "", "1", "value"},
      {false, NEditors::kDataUnsigned, "1", "x", "size"},
      {false, NEditors::kDataUnsigned, "1", "9", "size"},
      {false, NEditors::kDataUnsigned, "256", "1", "size"},
      {true, NEditors::kDataUnsigned, "00fF", "1", "uint:0xff"},
      {true, NEditors::kDataUnsigned, "xyz", "1", "value"},
      {true, NEditors::kDataSigned, "-5", "1", "value"},
      {false, NEditors::kDataSigned, "-128", "1", "int:-128"},
      {false, NEditors::kDataSigned, "-129", "1", "size"},
      {false, NEditors::kDataFloat, "1", "5", "value"},
      {false, NEditors::kDataByteArray, "1G", "8", "value"},
      {false, NEditors::kDataFile, "nothing.bin", "8", "value"},
  };
  for (const auto& row : rows) {
    DataComposer composer({"uint:1", 1, false}, {.isPdo = true, .hexadecimal = row.hexadecimal});
    composer.SetType(row.type);
    composer.SetValue(row.value);
    composer.SetSize(row.size);
    EXPECT_EQ(Accepted(composer), row.result) << row.value << " in " << row.size;
  }
}

TEST(DataComposer, TheSizeFollowsTheValue) {
  const DataFolder folder;
  DataComposer composer({"uint:1", 8, true}, {.hexadecimal = true, .folder = folder.Path()});
  EXPECT_FALSE(composer.CanTypeSize());
  EXPECT_EQ(composer.Size(), "8");  // until something changes
  composer.SetValue("100");
  EXPECT_EQ(composer.Size(), "2");
  composer.SetValue("1 0");
  EXPECT_EQ(composer.Size(), "N/A");
  EXPECT_EQ(Accepted(composer), "size");
  composer.SetType(NEditors::kDataString);
  EXPECT_EQ(composer.Size(), "3");
  composer.SetFile(folder.Path() / "folder" / "inner.bin");
  EXPECT_EQ(composer.Type(), NEditors::kDataFile);
  EXPECT_EQ(composer.Size(), "2");
  EXPECT_EQ(composer.Value(), std::filesystem::path("folder/inner.bin").make_preferred().string());
  composer.SetAutomatic(false);
  EXPECT_TRUE(composer.CanTypeSize());
}

TEST(DataComposer, TellsWhenADescriptionDeclaresLess) {
  const auto open = [](bool isPdo, bool automatic, const char* size) {
    DataComposer composer({"uint:1", 2, automatic}, {.isPdo = isPdo, .limit = 2});
    composer.SetValue("16777215");
    if (!automatic) composer.SetSize(size);
    return composer.Accept();
  };
  const std::wstring pdo =
      L"The entered data (3 bytes) exceeds the PDO length (2 bytes) declared in the related mapping table.";
  const std::wstring object =
      L"The entered data (3 bytes) exceeds the object size (2 bytes) declared in the nodes object "
      L"dictionary.";
  const std::wstring size = L"The entered data (3 bytes) exceeds the specified data length (2 bytes).";

  const auto automatic = open(true, true, "");
  EXPECT_EQ(automatic.warnings, std::vector{pdo});
  EXPECT_EQ(automatic.focus, ComposerField::Value);
  EXPECT_FALSE(automatic.result);

  const auto tooShort = open(false, false, "2");
  EXPECT_EQ(tooShort.warnings, (std::vector{object, size}));
  EXPECT_EQ(tooShort.focus, ComposerField::Size);
  EXPECT_FALSE(tooShort.result);

  // Who enters the size may go beyond what is declared, warned.
  const auto longer = open(true, false, "3");
  EXPECT_EQ(longer.warnings, std::vector{pdo});
  ASSERT_TRUE(longer.result);
  EXPECT_EQ(longer.result->size, 3u);
}

}  // namespace
