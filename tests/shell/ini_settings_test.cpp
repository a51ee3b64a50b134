#include "shell/ini_settings.h"

#include <gtest/gtest.h>

#include <sstream>

#include "score/file_io.h"
#include "test_folder.h"

namespace plectaro {
namespace {

using testing::linesOf;

IniSettings unusual() {
  IniSettings s;
  s.ToolbarVisible.fill(true);
  s.ToolbarVisible[17] = false;
  s.ToolbarDocked[3] = false;
  s.FTPPassword = "p|w";
  s.FTPAddress = "ftp://example.org/music";
  s.FTPUploadMode = 0;
  s.PlayChords = false;
  s.ChordReverb = true;
  s.HideChordManager = true;  // the label longer than the label column
  s.OutputDeviceID = 3;
  s.UndoLevels = 25;
  s.LatestUpdateString = "  spaced  ";
  s.BendCoefficient = 8.25;
  s.VibratoCount = 9;
  s.AutoPageStretch = true;
  s.FloatBars[3] = {2, -40, 1200};
  s.MinTabX = 31;
  s.MaxTabX = 95;
  s.RecentFiles[0] = "/home/me/songs/a b.plm";
  s.RecentFiles[9] = "/last.plm";
  return s;
}

TEST(IniSettings, EveryValueSurvivesAWriteAndARead) {
  const IniSettings s = unusual();
  EXPECT_EQ(LoadINISettingsText(SaveINISettingsText(s)), s);
  EXPECT_EQ(LoadINISettingsText(SaveINISettingsText(IniSettings())), IniSettings());
}

TEST(IniSettings, LinesStandAtTheirPlacesAndColumns) {
  const auto lines = linesOf(SaveINISettingsText(unusual()));
  // header 6, toolbars 36, labelled values 32, float bars 18, spacing 2, recent files 10
  ASSERT_EQ(lines.size(), 104u);
  EXPECT_EQ(lines[0], "Plectaro 4 INI File");
  EXPECT_EQ(lines[1], std::string(63, '-') + "|");
  EXPECT_EQ(lines[2], "1 = Yes, 0 = No.");
  EXPECT_EQ(lines[3], "Do not delete any part of this file.");
  EXPECT_EQ(lines[4], lines[1]);
  EXPECT_EQ(lines[5], " ");

  struct Expect {
    size_t line;
    std::string text;
  };
  const Expect expected[] = {
      {6, "File Toolbar Visible:                     [1]"},
      {7, "Input Toolbar Toolbar Visible:            [1]"},
      {23, "File Navigation Toolbar Visible:          [0]"},
      {27, "Sound Toolbar Docked:                     [0]"},
      {42, "FTP Server Password:                      |p|w"},
      {44, "FTP Server Address:                       |ftp://example.org/music"},
      {45, "FTP Upload Mode (1=bin,0=asc):            |0"},
      {46, "Play chords on load:                      [0]"},
      {58, "Hide the chord manager after adding chords:[1]"},
      {63, "Bend Coefficient:                         |8.25"},
      {73, "Auto Page Stretch:                        [1]"},
      {77, "2,-40,1200"},
      {92, "Min HSpace bet Notes:                     |31"},
      {93, "Max HSpace bet Notes:                     |95"},
      {94, "/home/me/songs/a b.plm"},
      {103, "/last.plm"},
  };
  for (const auto& e : expected) EXPECT_EQ(lines[e.line], e.text) << "line " << e.line + 1;
}

TEST(IniSettings, DamagedFilesLoadWhatTheyCanAndNeverFail) {
  const std::string good = SaveINISettingsText(unusual());
  const auto lines = linesOf(good);
  auto join = [](const std::vector<std::string>& ls) {
    std::string out;
    for (const auto& l : ls) out += l + "\n";  // LF only, as an editor on another system saves
    return out;
  };
  const IniSettings d;

  // Short file: the values of the lines it has, defaults after.
  {
    std::vector<std::string> head(lines.begin(), lines.begin() + 47);
    IniSettings s = LoadINISettingsText(join(head));
    EXPECT_EQ(s.FTPAddress, "ftp://example.org/music");
    EXPECT_FALSE(s.PlayChords);           // line 47 was there
    EXPECT_EQ(s.ChordReverb, d.ChordReverb);  // line 48 was not
    EXPECT_EQ(s.RecentFiles, d.RecentFiles);
  }
  // A deleted line shifts every later value by one: the reader counts lines.
  {
    std::vector<std::string> cut = lines;
    cut.erase(cut.begin() + 45);  // the upload mode line
    IniSettings s = LoadINISettingsText(join(cut));
    EXPECT_EQ(s.FTPUploadMode, 0);  // took "Play chords on load: [0]", which has no value
    EXPECT_TRUE(s.PlayChords);      // took "Chord Reverb On: [1]"
  }
  // A "1" anywhere from the value column on means yes; before it, it does not count.
  {
    std::vector<std::string> l = lines;
    l[46] = "Play chords on load 1:                        x 1";
    l[47] = "Chord Reverb On 1111:                     [0]";
    IniSettings s = LoadINISettingsText(join(l));
    EXPECT_TRUE(s.PlayChords);
    EXPECT_FALSE(s.ChordReverb);
  }
  // Numbers that would hurt (a huge undo ring, a page with no room for a note) are held to a
  // usable range; a bad dock area falls back to the top.
  {
    std::vector<std::string> l = lines;
    l[57] = "Levels of Undo:                           |99999999999999999999";
    l[77] = "9,abc,";
    l[92] = "Min HSpace bet Notes:                     |-5";
    IniSettings s = LoadINISettingsText(join(l));
    EXPECT_EQ(s.UndoLevels, 100);
    EXPECT_EQ(s.MinTabX, 1);
    EXPECT_EQ(s.FloatBars[3], (FloatBarPlace{0, 0, 0}));
  }
  for (const std::string& junk : {std::string(), std::string("\r\n\r\n"),
                                  std::string(5000, '1'), std::string("\0\xff[|]\n", 6)}) {
    IniSettings s = LoadINISettingsText(junk);
    EXPECT_EQ(s, d);
  }
}

TEST(IniSettings, FileLoadAndAtomicSave) {
  testing::TempFolder dir;
  IniSettings s;
  EXPECT_FALSE(LoadINISettings(s, dir / "PL4.ini"));
  SaveINISettings(unusual(), dir / "PL4.ini");
  ASSERT_TRUE(LoadINISettings(s, dir / "PL4.ini"));
  EXPECT_EQ(s, unusual());
  EXPECT_THROW(SaveINISettings(s, dir / "missing" / "PL4.ini"), FileError);
}

}  // namespace
}  // namespace plectaro
