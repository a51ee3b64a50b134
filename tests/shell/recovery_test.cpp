#include "shell/recovery.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

#include "score/file_io.h"
#include "score/music_file.h"
#include "shell/session.h"
#include "test_folder.h"

namespace plectaro {
namespace {

namespace fs = std::filesystem;

class RecoveryTest : public ::testing::Test {
 protected:
  testing::TempFolder home;
  ScriptedPrompter prompter;

  AppFolder folder() const { return ResolveAppFolder(home.path().string()); }
  CommandLine cmd(std::string file = {}) const {
    CommandLine c;
    c.home = home.path().string();
    c.file = std::move(file);
    return c;
  }
  std::vector<fs::path> leftovers(const char* ext = ".plr") const {
    std::vector<fs::path> out;
    std::error_code ec;
    for (auto it = fs::directory_iterator(RecoveryFolder(folder().data()), ec);
         !ec && it != fs::directory_iterator(); it.increment(ec))
      if (it->path().extension() == ext) out.push_back(it->path());
    return out;
  }
  static void edit(Session& s, const std::string& title, const char* fret) {
    s.doc().score.Title = title;
    s.doc().score.noteMut(0, 0, 0, 2).Fret = fret;
    s.doc().touched();
  }
};

// The editor is killed without warning in the middle of its edits; the next start offers what
// the last autosave held and restores it under the old file name.
TEST_F(RecoveryTest, EditsOfAKilledEditorComeBackAtTheNextStart) {
  const fs::path song = home / "song.plm";
  SaveMusicFile(Score(), song);
  const std::string userBytes = ReadWholeFile(song);

  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    ::close(ready[0]);
    ScriptedPrompter quiet;
    Session s(ResolveAppFolder(home.path().string()), quiet);
    s.start(cmd(song.string()), {});
    edit(s, "Autosaved", "7");
    const bool wrote = s.autosaveNow(1700000000);
    // More typing after the autosave: this is what a kill loses.
    edit(s, "Lost", "9");
    const char c = wrote ? 'y' : 'n';
    if (::write(ready[1], &c, 1) != 1) ::_exit(3);
    for (;;) ::pause();
  }
  ::close(ready[1]);
  char c = 0;
  ASSERT_EQ(::read(ready[0], &c, 1), 1);
  ::close(ready[0]);
  ::kill(child, SIGKILL);
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status));
  ASSERT_EQ(c, 'y');
  EXPECT_EQ(ReadWholeFile(song), userBytes) << "autosave never writes the user's file";
  ASSERT_EQ(leftovers().size(), 1u);

  {
    prompter.push(Answer::Yes);
    Session s(folder(), prompter);
    s.start(cmd(), {});
    ASSERT_EQ(prompter.asked().size(), 1u);
    const std::string& q = prompter.asked()[0].text;
    EXPECT_EQ(q.rfind("Plectaro was not closed properly. Changes to 'song.plm' were kept for recovery at ", 0), 0u) << q;
    EXPECT_NE(q.find("2023-11-1"), std::string::npos) << q;
    EXPECT_EQ(s.doc().score.Title, "Autosaved");
    EXPECT_EQ(s.doc().score.note(0, 0, 0, 2).Fret, "7");
    EXPECT_EQ(s.doc().score.CurrentFileName, song.string());
    EXPECT_TRUE(s.doc().ScoreChanged);
    // The rescued edits sit in this editor's own recovery file until they are saved.
    ASSERT_EQ(leftovers().size(), 1u);
    EXPECT_TRUE(s.files().ForceSaveFile(song.string()));
    EXPECT_TRUE(leftovers().empty()) << "a save removes the recovery file";
    s.shutdown();
  }
  EXPECT_TRUE(leftovers(".lock").empty());
  prompter.clear();
  Session again(folder(), prompter);
  again.start(cmd(), {});
  EXPECT_TRUE(prompter.asked().empty());
}

TEST_F(RecoveryTest, CleanExitLeavesNothingAndARunningEditorsFileIsNotOffered) {
  Session first(folder(), prompter);
  first.start(cmd(), {});
  EXPECT_FALSE(first.autosaveNow(100)) << "nothing changed: nothing written";
  edit(first, "Mine", "3");
  EXPECT_TRUE(first.autosaveNow(100));
  EXPECT_FALSE(first.autosaveNow(160)) << "no change since the last write";
  edit(first, "Mine again", "4");
  EXPECT_TRUE(first.autosaveNow(220));
  ASSERT_EQ(leftovers().size(), 1u);

  // A second editor on the same app folder leaves the first one's file alone.
  ScriptedPrompter other;
  {
    Session second(folder(), other);
    second.start(cmd(), {});
    EXPECT_TRUE(other.asked().empty());
  }
  ASSERT_EQ(leftovers().size(), 1u);

  first.shutdown();
  EXPECT_TRUE(leftovers().empty());
}

TEST_F(RecoveryTest, DamagedRecoveryFilesAreRefusedAndKeptAside) {
  Document doc;
  doc.score.Title = "Whole";
  const std::string good = RecoveryFileBytes(doc, 1700000000);
  const std::pair<const char*, std::string> cases[] = {
      {"not a recovery file", "hello"},
      {"cut inside the header", good.substr(0, 25)},
      {"cut inside the song", good.substr(0, good.size() - 40)},
      {"a time that is no number", "Plectaro recovery 1\r\n\r\nnoon\r\n" + good.substr(good.find("\r\n", 23) + 2)},
  };
  for (const auto& [name, bytes] : cases) {
    SCOPED_TRACE(name);
    fs::create_directories(RecoveryFolder(folder().data()));
    const fs::path file = RecoveryFolder(folder().data()) / "4242-0.plr";
    WriteFileAtomically(file, bytes);
    prompter.clear();
    Session s(folder(), prompter);
    s.start(cmd(), {});
    ASSERT_EQ(prompter.asked().size(), 1u);
    EXPECT_EQ(prompter.asked()[0].kind, "message");
    EXPECT_NE(prompter.asked()[0].text.find(file.string() + ".damaged"), std::string::npos)
        << prompter.asked()[0].text;
    EXPECT_EQ(s.doc().score.Title, "Untitled");
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(ReadWholeFile(file.string() + ".damaged"), bytes);
    fs::remove(file.string() + ".damaged");
  }
}

TEST_F(RecoveryTest, CancelKeepsALeftoverNoRemovesItAndTheIntervalComesFromTheSettings) {
  Document doc;
  doc.score.Title = "Declined";
  fs::create_directories(RecoveryFolder(folder().data()));
  WriteFileAtomically(RecoveryFolder(folder().data()) / "99999-0.plr", RecoveryFileBytes(doc, 5));
  // Cancel keeps the file for the next start; No lets it go.
  {
    prompter.push(Answer::Cancel);
    Session first(folder(), prompter);
    first.start(cmd(), {});
    EXPECT_EQ(first.doc().score.Title, "Untitled");
    EXPECT_EQ(leftovers().size(), 1u);
  }
  prompter.push(Answer::No);
  Session s(folder(), prompter);
  s.start(cmd(), {});
  EXPECT_EQ(s.doc().score.Title, "Untitled");
  EXPECT_TRUE(leftovers().empty());

  EXPECT_EQ(s.autosaveMinutes(), 1);
  for (const auto& [text, minutes] : {std::pair{"0", 0}, {"5", 5}, {"x", 1}, {"-3", 0}}) {
    s.settings().SaveSetting(kAutosaveSection, kAutosaveKey, text);
    EXPECT_EQ(s.autosaveMinutes(), minutes) << text;
  }
}

}  // namespace
}  // namespace plectaro
