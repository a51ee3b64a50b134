#include "shell/plain_settings.h"

#include <gtest/gtest.h>

#include "score/file_io.h"
#include "shell/qt_settings_store.h"
#include "test_folder.h"

namespace plectaro {
namespace {

struct Entry {
  const char* section;
  const char* key;
  const char* value;
  bool plain;  // whether the quick reader must take the file
};

// What the settings writer itself puts on disk, read back both ways: the quick reader either
// declines the file or agrees with the full reader on every value. The plain entries are the
// shapes the editor writes every day, so the quick path really is taken for them.
TEST(PlainSettings, AgreesWithTheFullReaderOrDeclines) {
  const Entry entries[] = {
      {"DefaultInfo", "GFONTNAME", "Times New Roman", true},
      {"DefaultInfo", "GFONTSIZE", "19", true},
      {"DefaultInfo", "GFONTBOLD", "False", true},
      {"Scales", "ListScale", "2nd Mode of In Sen", true},
      {"Paths", "Last", "/home/me/tabs/song.plm", true},
      {"Paths", "Empty", "", true},
      {"Odd", "Lead", " leading blank", false},
      {"Odd", "Trail", "trailing blank ", false},
      {"Odd", "List", "a, b", false},
      {"Odd", "Quote", "say \"hi\"", false},
      {"Odd", "Back", "C:\\tabs", false},
      {"Odd", "At", "@Variant", false},
      {"Odd", "Accent", "Caf\xc3\xa9", false},
      {"Odd", "Semi", "a;b", false},
      {"Odd", "Equals", "a=b", false},
      {"Odd", "Tab", "a\tb", false},
      {"Odd", "Line", "a\nb", false},
      {"Odd", "Key With Blanks", "x", false},
      {"Odd Section", "Key", "x", false},
      {"General", "Key", "x", false},
  };
  for (const Entry& e : entries) {
    SCOPED_TRACE(std::string(e.section) + "/" + e.key + "=" + e.value);
    testing::TempFolder dir;
    const auto file = dir / "plectaro.ini";
    {
      QtSettingsStore full(file);
      full.setValue("DefaultInfo", "GFONTSIZE", "19");
      full.setValue(e.section, e.key, e.value);
    }
    const auto quick = ReadPlainSettings(ReadWholeFile(file));
    const QtSettingsStore full(file);
    if (e.plain) {
      ASSERT_TRUE(quick.has_value()) << ReadWholeFile(file);
    }
    if (!quick) continue;
    EXPECT_EQ(quick->value(e.section, e.key), full.value(e.section, e.key));
    EXPECT_EQ(quick->value("DefaultInfo", "GFONTSIZE"), std::optional<std::string>("19"));
  }
}

// Files edited by hand or cut short: declined, never half read.
TEST(PlainSettings, DeclinesWhatItCannotReadSurely) {
  const char* const texts[] = {
      "key=outside any section\n", "[Open\nk=v\n", "[S]\nno equals sign\n", "[S]\nk=v\r\n",
      "[S]\nk=1\nk=2\n",           "[S]\n =v\n",    "[S]\nk = v\n",
  };
  for (const char* t : texts) {
    SCOPED_TRACE(t);
    EXPECT_FALSE(ReadPlainSettings(t).has_value());
  }
  const auto store = ReadPlainSettings("[A]\nx=1\n\n[B]\nx=2\n[A]\ny=3");
  ASSERT_TRUE(store.has_value());
  EXPECT_EQ(store->value("A", "x"), std::optional<std::string>("1"));
  EXPECT_EQ(store->value("B", "x"), std::optional<std::string>("2"));
  EXPECT_EQ(store->value("A", "y"), std::optional<std::string>("3"));
  EXPECT_TRUE(ReadPlainSettings("").has_value());
}

}  // namespace
}  // namespace plectaro
