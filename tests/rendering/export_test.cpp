// Page pictures through the Qt surface, and the CLI verbs that make them.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <QGuiApplication>
#include <QImage>

#include <array>
#include <cstdio>
#include <filesystem>
#include <regex>

#include "rendering/qt/page_export.h"
#include "rendering/qt/qt_surface.h"
#include "rendering/recording_surface.h"
#include "score/file_io.h"
#include "score/music_file.h"
#include "test_scores.h"

// Fontconfig keeps its font caches until the process ends and never frees them; that is not
// ours to report.
extern "C" const char* __asan_default_options() { return "detect_leaks=0"; }

namespace plectaro {
namespace {

namespace fs = std::filesystem;

class Export : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    static int argc = 1;
    static char name[] = "rendering_qt_tests";
    static char* argv[] = {name, nullptr};
    if (!QGuiApplication::instance()) app_ = new QGuiApplication(argc, argv);
  }
  Export() {
    std::string t = (fs::temp_directory_path() / "plectaro-render-XXXXXX").string();
    dir_ = ::mkdtemp(t.data());
  }
  ~Export() override {
    std::error_code ec;
    fs::remove_all(dir_, ec);
  }
  fs::path at(const std::string& name) const { return dir_ / name; }

  int cli(const std::string& args, std::string* out = nullptr) {
#ifdef PLECTARO_CLI
    const std::string cmd = std::string(PLECTARO_CLI) + " --home '" + (dir_ / "home").string() + "' " + args + " 2>/dev/null";
    FILE* p = ::popen(cmd.c_str(), "r");
    std::array<char, 4096> buf;
    size_t n;
    while ((n = std::fread(buf.data(), 1, buf.size(), p)) > 0)
      if (out) out->append(buf.data(), n);
    const int status = ::pclose(p);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#else
    (void)args;
    (void)out;
    return -1;
#endif
  }

  static QGuiApplication* app_;
  fs::path dir_;
};

QGuiApplication* Export::app_ = nullptr;

TEST_F(Export, PngBmpSvgOfOnePage) {
  Document doc = test::MakeDoc(8, 4, true, false, true);
  doc.score.Title = "Export";
  const LayoutSettings settings;
  DrawResult r = SavePageImage(doc, 0, 0, settings, DrawTexts{}, PageImageKind::Png, 96.1644, at("p.png"));
  ASSERT_TRUE(r.Ok) << r.Error;
  QImage png(QString::fromStdString(at("p.png").string()));
  EXPECT_EQ(png.width(), 795);
  EXPECT_EQ(png.height(), 1124);
  // The page is mostly white with dark staff lines on it.
  int dark = 0;
  for (int y = 0; y < png.height(); y += 2)
    for (int x = 0; x < png.width(); x += 2) dark += qGray(png.pixel(x, y)) < 100;
  EXPECT_GT(dark, 200);
  EXPECT_LT(dark, 795 * 1124 / 4 / 10);

  ASSERT_TRUE(SavePageImage(doc, 0, 0, settings, DrawTexts{}, PageImageKind::Bmp, 192.3288, at("p.bmp")).Ok);
  QImage bmp(QString::fromStdString(at("p.bmp").string()));
  EXPECT_EQ(bmp.width(), 1590);

  ASSERT_TRUE(SavePageImage(doc, 0, 0, settings, DrawTexts{}, PageImageKind::Svg, 96, at("p.svg")).Ok);
  const std::string svg = ReadWholeFile(at("p.svg"));
  EXPECT_NE(svg.find("<svg"), std::string::npos);
  EXPECT_NE(svg.find("Export"), std::string::npos);
}

TEST_F(Export, FailuresKeepTheOldFile) {
  Document doc = test::MakeDoc(2, 4);
  WriteFileAtomically(at("old.png"), "old bytes");
  // A page beyond the last: nothing is written.
  DrawResult r = SavePageImage(doc, 0, 5, LayoutSettings{}, DrawTexts{}, PageImageKind::Png, 96, at("old.png"));
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(ReadWholeFile(at("old.png")), "old bytes");
  EXPECT_THROW(SavePageImage(doc, 0, 0, LayoutSettings{}, DrawTexts{}, PageImageKind::Png, 96,
                             at("missing-folder") / "x.png"),
               FileError);
  EXPECT_THROW(SavePageImage(doc, 0, 0, LayoutSettings{}, DrawTexts{}, PageImageKind::Png, 5000, at("big.png")),
               FileError);
  EXPECT_FALSE(fs::exists(at("big.png")));
}

TEST_F(Export, CliLayoutJsonAndEveryPage) {
  Document doc = test::MakeDoc(40, 16);
  SaveMusicFile(doc.score, at("long.plm"));
  std::string json;
  ASSERT_EQ(cli("layout '" + at("long.plm").string() + "' --json", &json), 0);
  for (const char* key : {"\"pageWidth\":795", "\"pageHeight\":1124", "\"rowHeight\":50", "\"rowsPerPage\":6",
                          "\"lastPage\":6", "\"firstBarOfPage\":[0,7,0,0,0,0,0]", "\"layoutOrdinal\":39"})
    EXPECT_NE(json.find(key), std::string::npos) << key << " in " << json;
  json.clear();
  ASSERT_EQ(cli("layout '" + at("long.plm").string() + "' --paper 2 --landscape --json", &json), 0);
  EXPECT_NE(json.find("\"pageWidth\":795,\"pageHeight\":560"), std::string::npos) << json;
  EXPECT_EQ(cli("layout '" + at("long.plm").string() + "' --paper 14"), 2);
  EXPECT_EQ(cli("layout '" + at("long.plm").string() + "' --track 3"), 1);

  ASSERT_EQ(cli("convert '" + at("long.plm").string() + "' '" + at("out.png").string() + "' --page all"), 0);
  for (int p = 1; p <= 7; ++p) EXPECT_TRUE(fs::exists(at("out-" + std::to_string(p) + ".png"))) << p;
  EXPECT_FALSE(fs::exists(at("out-8.png")));
  ASSERT_EQ(cli("convert '" + at("long.plm").string() + "' '" + at("one.svg").string() + "' --page 2"), 0);
  EXPECT_EQ(cli("convert '" + at("long.plm").string() + "' '" + at("no.png").string() + "' --page 0"), 1);
  EXPECT_EQ(cli("convert '" + at("long.plm").string() + "' '" + at("no.bmp").string() + "' --page 9"), 1);
  EXPECT_FALSE(fs::exists(at("no.bmp")));
}

int pdfPages(const std::string& pdf) {
  const std::regex page("/Type\\s*/Page[^s]");
  return static_cast<int>(std::distance(std::sregex_iterator(pdf.begin(), pdf.end(), page), std::sregex_iterator()));
}

TEST_F(Export, EngravedPdfHasOnePagePerLayoutPage) {
  Document doc = test::MakeDoc(40, 16, true);
  doc.score.Title = "Both Tracks";
  doc.score.Tracks.push_back(doc.score.Tracks[0]);
  doc.score.Tracks[1].TrebleStaff = false;  // lower rows: fewer pages
  const LayoutSettings settings;
  int expected = 0;
  for (int t : {0, 1}) expected += LayoutTrack(doc, t, settings, DrawTexts{}).LastPage + 1;
  ASSERT_GT(expected, 4);
  EXPECT_EQ(ExportPagesPDF(doc, {0, 1}, settings, DrawTexts{}, at("both.pdf")), expected);
  const std::string pdf = ReadWholeFile(at("both.pdf"));
  EXPECT_EQ(pdfPages(pdf), expected);
  EXPECT_NE(pdf.find("FontFile2"), std::string::npos);  // fonts embedded

  SaveMusicFile(doc.score, at("two.plm"));
  ASSERT_EQ(cli("convert '" + at("two.plm").string() + "' '" + at("cli.pdf").string() + "' --all-tracks"), 0);
  EXPECT_EQ(pdfPages(ReadWholeFile(at("cli.pdf"))), expected);
  ASSERT_EQ(cli("convert '" + at("two.plm").string() + "' '" + at("t2.pdf").string() + "' --track 2"), 0);
  EXPECT_EQ(pdfPages(ReadWholeFile(at("t2.pdf"))), LayoutTrack(doc, 1, settings, DrawTexts{}).LastPage + 1);
  EXPECT_EQ(cli("convert '" + at("two.plm").string() + "' '" + at("no.pdf").string() + "' --track 3"), 1);
  EXPECT_EQ(cli("convert '" + at("two.plm").string() + "' '" + at("no.pdf").string() + "' --track 1 --all-tracks"), 2);
  EXPECT_FALSE(fs::exists(at("no.pdf")));
  // The text tab as PDF: the writer's own header, one text page here.
  ASSERT_EQ(cli("convert '" + at("two.plm").string() + "' '" + at("text.pdf").string() + "' --text --track 2"), 0);
  EXPECT_EQ(ReadWholeFile(at("text.pdf")).substr(0, 9), "%PDF-1.2\r");
}

// Drawing many pages in one walk must give each page exactly what drawing it alone gives.
TEST_F(Export, PagesOfOneWalkMatchSinglePages) {
  Document doc = test::MakeDoc(40, 16, true);
  const LayoutSettings settings;
  std::vector<RecordingSurface> walked(8);
  std::vector<int> drawn;
  DrawResult r = RenderPages(doc, 0, settings, DrawTexts{}, [&](int page, int) -> Surface* {
    if (page != 1 && page != 3) return nullptr;
    drawn.push_back(page);
    return &walked[static_cast<size_t>(page)];
  });
  ASSERT_TRUE(r.Ok) << r.Error;
  EXPECT_EQ(drawn, (std::vector<int>{1, 3}));
  for (int page : {1, 3}) {
    RecordingSurface alone;
    ASSERT_TRUE(RenderPage(doc, 0, page, settings, DrawTexts{}, alone).Ok);
    EXPECT_EQ(walked[static_cast<size_t>(page)].calls(), alone.calls()) << page;
  }
}

}  // namespace
}  // namespace plectaro
