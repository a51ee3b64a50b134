#include "shell/file_commands.h"

#include <gtest/gtest.h>

#include "score/file_io.h"
#include "score/music_file.h"
#include "score/new_score.h"
#include "test_folder.h"

namespace plectaro {
namespace {

class FileCommandsTest : public ::testing::Test {
 protected:
  testing::TempFolder dir;
  MemorySettingsStore settings;
  IniSettings ini;
  Messages msg;
  ScriptedPrompter prompter;
  Document doc;
  FileCommands files{doc, settings, ini, msg, prompter};
  int replaced = 0;

  void SetUp() override {
    InitScore(doc, settings);
    doc.ScoreChanged = false;
    files.documentReplaced = [this] { ++replaced; };
  }
  std::string demo() const { return (testing::SourceData() / "examples" / "riff.plm").string(); }
  std::string path(const char* name) const { return (dir / name).string(); }
  void edit() {
    doc.score.Title = "Edited";
    doc.touched();
  }
};

TEST_F(FileCommandsTest, OpenChangeSaveAsReopenKeepsTheChange) {
  ASSERT_TRUE(files.ForceOpenFile(demo()));
  EXPECT_FALSE(doc.ScoreChanged);
  EXPECT_EQ(ini.RecentFiles[0], demo());
  const int tracks = doc.score.LastTrack();
  edit();
  prompter.pushText(path("copy"));  // no extension: .plm is added
  ASSERT_TRUE(files.mnuFileSaveAs_Click());
  EXPECT_EQ(doc.score.CurrentFileName, path("copy.plm"));
  EXPECT_FALSE(doc.ScoreChanged);
  EXPECT_EQ(ini.RecentFiles[0], path("copy.plm"));
  EXPECT_EQ(ini.RecentFiles[1], demo());

  InitScore(doc, settings);
  ASSERT_TRUE(files.ForceOpenFile(path("copy.plm")));
  EXPECT_EQ(doc.score.Title, "Edited");
  EXPECT_EQ(doc.score.LastTrack(), tracks);
  EXPECT_TRUE(prompter.asked().size() == 1 && prompter.asked()[0].kind == "save");
}

TEST_F(FileCommandsTest, AskToSaveAnswers) {
  struct Case {
    const char* name;
    bool changed;
    std::vector<ScriptedPrompter::Reply> replies;
    bool goesOn;
    bool saved;
  };
  const Case cases[] = {
      {"nothing to lose: no question", false, {}, true, false},
      {"Cancel keeps the document", true, {Answer::Cancel}, false, false},
      {"No drops the changes", true, {Answer::No}, true, false},
      {"Yes, then the save dialog cancelled", true,
       {Answer::Yes, std::optional<std::string>()}, false, false},
      {"Yes and a name", true, {Answer::Yes, std::optional<std::string>("asked.plm")}, true, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    InitScore(doc, settings);
    doc.ScoreChanged = false;
    if (c.changed) edit();
    prompter.clear();
    for (auto r : c.replies) {
      if (auto* s = std::get_if<std::optional<std::string>>(&r); s && *s) *s = path((*s)->c_str());
      prompter.push(r);
    }
    EXPECT_EQ(files.AskToSave(), c.goesOn);
    EXPECT_EQ(prompter.pending(), 0u);
    EXPECT_EQ(doc.score.Title, c.changed ? "Edited" : "Untitled");
    if (c.changed) {
      EXPECT_EQ(prompter.asked()[0].text, "Would you like to save the changes to 'Unsaved.plm' ?");
    }
    std::error_code ec;
    EXPECT_EQ(std::filesystem::exists(dir / "asked.plm", ec), c.saved);
  }
}

TEST_F(FileCommandsTest, NewDocumentAsksFirstAndCancelKeepsEverything) {
  ASSERT_TRUE(files.ForceOpenFile(demo()));
  edit();
  prompter.push(Answer::Cancel);
  files.mnuFileNew_Click();
  EXPECT_EQ(doc.score.Title, "Edited");
  EXPECT_EQ(doc.score.CurrentFileName, demo());
  prompter.push(Answer::No);
  files.mnuFileNew_Click();
  EXPECT_EQ(doc.score.Title, "Untitled");
  EXPECT_EQ(doc.score.CurrentFileName, "");
}

TEST_F(FileCommandsTest, SaveAsOverAnExistingFileAsksAndNoWritesNothing) {
  WriteFileAtomically(dir / "old.plm", "old bytes");
  edit();
  prompter.pushText(path("old.plm"));
  prompter.push(false);
  EXPECT_FALSE(files.mnuFileSaveAs_Click());
  EXPECT_EQ(ReadWholeFile(dir / "old.plm"), "old bytes");
  EXPECT_EQ(prompter.asked().back().text,
            "The file 'old.plm' already exists. Would you like to replace it?");
  // A cancelled Save As leaves the document without a name; the next Save asks again.
  EXPECT_EQ(doc.score.CurrentFileName, "");
  prompter.pushText(path("old.plm"));
  prompter.push(true);
  EXPECT_TRUE(files.mnuFileSave_Click());
  EXPECT_NE(ReadWholeFile(dir / "old.plm"), "old bytes");
}

TEST_F(FileCommandsTest, FailedSaveNamesTheFileAndKeepsTheDocumentChanged) {
  edit();
  const std::string target = path("no-such-folder/song.plm");
  EXPECT_FALSE(files.ForceSaveFile(target));
  ASSERT_EQ(prompter.asked().size(), 1u);
  EXPECT_NE(prompter.asked()[0].text.find(target), std::string::npos);
  EXPECT_TRUE(doc.ScoreChanged);
  EXPECT_EQ(doc.score.CurrentFileName, "");
}

TEST_F(FileCommandsTest, OpenFailuresKeepTheDocumentOrStartANewOne) {
  // A PNG header under a music file's name, a file of the old plain-text kind, an old .pl4,
  // a missing file and a file type of a tool.
  const std::string png("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
  WriteFileAtomically(dir / "picture.plm", png);
  WriteFileAtomically(dir / "old36.plm", "Plectaro 3.6\r\n<T=Old>\r\n");
  WriteFileAtomically(dir / "older.pl4", "whatever");
  WriteFileAtomically(dir / "beat.p4d", "drums");
  struct Case {
    const char* file;
    bool replaced;
    const char* messageStart;
  };
  const Case cases[] = {
      {"picture.plm", true, "This is not a Plectaro music file"},
      {"old36.plm", false, "Files in the older .pl4 format"},
      {"older.pl4", false, "Files in the older .pl4 format"},
      {"missing.plm", false, "The file could not be read or written:"},
      {"beat.p4d", false, "Plectaro cannot open files of this type: beat.p4d"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    ASSERT_TRUE(files.ForceOpenFile(demo()));
    edit();
    prompter.clear();
    EXPECT_EQ(files.ForceOpenFile(path(c.file)), c.replaced);
    ASSERT_EQ(prompter.asked().size(), 1u);
    EXPECT_EQ(prompter.asked()[0].text.rfind(c.messageStart, 0), 0u) << prompter.asked()[0].text;
    if (c.replaced) {
      EXPECT_EQ(doc.score.Title, "Untitled");
      EXPECT_EQ(doc.score.CurrentFileName, "");
    } else {
      EXPECT_EQ(doc.score.Title, "Edited");
      EXPECT_EQ(doc.score.CurrentFileName, demo());
    }
  }
  // A file that could not be opened never enters the recent files.
  for (const auto& r : ini.RecentFiles) EXPECT_TRUE(r.empty() || r == demo()) << r;
}

// A file cut off anywhere past its version line (a full disk, a copy that never finished)
// opens with what could be read, a message saying how much, and no file name, so that Ctrl+S
// cannot write the remains over it.
TEST_F(FileCommandsTest, CutOffFileOpensWithAMessageAndNoName) {
  const std::string whole = ReadWholeFile(demo());
  ASSERT_GT(whole.size(), 2000u);
  int lastRead = -1;
  for (double share : {0.002, 0.01, 0.05, 0.1, 0.25, 0.4, 0.6, 0.8, 0.95, 0.9999}) {
    const size_t cut = std::max<size_t>(16, static_cast<size_t>(share * double(whole.size())));
    SCOPED_TRACE(cut);
    WriteFileAtomically(dir / "cut.plm", whole.substr(0, cut));
    ASSERT_TRUE(files.ForceOpenFile(demo()));
    edit();
    prompter.clear();
    ASSERT_TRUE(files.ForceOpenFile(path("cut.plm")));
    ASSERT_EQ(prompter.asked().size(), 1u);
    const std::string& text = prompter.asked()[0].text;
    EXPECT_EQ(text.rfind("The file 'cut.plm' is damaged or incomplete. Bars read: ", 0), 0u) << text;
    const int read = std::stoi(text.substr(text.find("read: ") + 6));
    EXPECT_GE(read, lastRead) << "a longer piece of the file never gives fewer bars";
    lastRead = read;
    EXPECT_EQ(doc.score.CurrentFileName, "");
    EXPECT_TRUE(doc.ScoreChanged);
    EXPECT_NE(doc.score.Title, "Edited");
    EXPECT_EQ(ReadWholeFile(dir / "cut.plm").size(), cut);
    for (const auto& r : ini.RecentFiles) EXPECT_NE(r, path("cut.plm"));
  }
  EXPECT_GT(lastRead, 0);
  // The whole file still opens silently.
  prompter.clear();
  ASSERT_TRUE(files.ForceOpenFile(demo()));
  EXPECT_TRUE(prompter.asked().empty());
}

// A Save As that fails keeps the name that last worked; one the user cancels gives it up, and
// the next Save asks again.
TEST_F(FileCommandsTest, FailedSaveAsKeepsTheOldName) {
  ASSERT_TRUE(files.ForceOpenFile(demo()));
  edit();
  prompter.pushText(path("no-such-folder/song.plm"));
  EXPECT_FALSE(files.mnuFileSaveAs_Click());
  EXPECT_EQ(doc.score.CurrentFileName, demo());
  EXPECT_TRUE(doc.ScoreChanged);
  EXPECT_NE(prompter.asked().back().text.find("could not be saved"), std::string::npos);
  prompter.pushText(std::nullopt);
  EXPECT_FALSE(files.mnuFileSaveAs_Click());
  EXPECT_EQ(doc.score.CurrentFileName, "");
}

TEST_F(FileCommandsTest, PasswordIsAskedBeforeTheFirstEditOnly) {
  doc.score.PasswordProtected = true;
  doc.score.Password = "Riff";
  EXPECT_TRUE(files.ForceSaveFile(path("locked.plm")));
  ASSERT_TRUE(files.ForceOpenFile(path("locked.plm")));
  EXPECT_FALSE(doc.PasswordEntered);

  prompter.pushText(std::optional<std::string>("riff"));  // case matters
  EXPECT_FALSE(files.PasswordCorrect());
  EXPECT_EQ(prompter.asked()[0].title, "Password Protected File");
  EXPECT_EQ(prompter.asked()[0].text, "Please enter the password for editing this file:");
  prompter.pushText(std::nullopt);  // cancelled
  EXPECT_FALSE(files.PasswordCorrect());
  prompter.pushText(std::optional<std::string>("Riff"));
  EXPECT_TRUE(files.PasswordCorrect());
  EXPECT_TRUE(files.PasswordCorrect());  // asked once per opening
  EXPECT_EQ(prompter.pending(), 0u);

  ASSERT_TRUE(files.ForceOpenFile(path("locked.plm")));
  EXPECT_FALSE(doc.PasswordEntered);  // opening asks again

  InitScore(doc, settings);
  EXPECT_TRUE(files.PasswordCorrect());  // an unprotected score never asks
}

TEST_F(FileCommandsTest, RecentFilesMoveToTheTopAndAMissingOneIsDropped) {
  for (const char* n : {"a.plm", "b.plm", "a.plm"}) {
    doc.score.CurrentFileName = path(n);
    files.AddRecentFile();
  }
  EXPECT_EQ(ini.RecentFiles[0], path("a.plm"));
  EXPECT_EQ(ini.RecentFiles[1], path("b.plm"));
  EXPECT_EQ(ini.RecentFiles[2], "");
  for (int i = 0; i < 12; ++i) {
    doc.score.CurrentFileName = path(("n" + std::to_string(i) + ".plm").c_str());
    files.AddRecentFile();
  }
  EXPECT_EQ(ini.RecentFiles.size(), static_cast<size_t>(kRecentFileCount));
  EXPECT_EQ(ini.RecentFiles[0], path("n11.plm"));

  files.mnuFileOpenRecentItem_Click(0);  // n11.plm was never written
  ASSERT_EQ(prompter.asked().size(), 1u);
  EXPECT_NE(prompter.asked()[0].text.find("no longer exists"), std::string::npos);
  EXPECT_EQ(ini.RecentFiles[0], path("n10.plm"));
  EXPECT_EQ(ini.RecentFiles.size(), static_cast<size_t>(kRecentFileCount));
  files.mnuFileOpenRecentItem_Click(-1);
  files.mnuFileOpenRecentItem_Click(99);
  EXPECT_EQ(prompter.asked().size(), 1u);
}

}  // namespace
}  // namespace plectaro
