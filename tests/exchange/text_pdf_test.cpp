// The text PDF writer: its bytes are fixed, drifting offsets and all.
#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <string>

#include "exchange/text_pdf.h"
#include "score/file_io.h"
#include "score/score_records.h"

namespace plectaro {
namespace {

TextPdfOptions fixedOptions() {
  Score s;
  s.Title = "Riff (live)";
  s.Author = "Jo";
  s.Artist = "The Band";
  ::setenv("SOURCE_DATE_EPOCH", "1700000000", 1);
  TextPdfOptions o = TextPdfOptionsFor(s);
  ::unsetenv("SOURCE_DATE_EPOCH");
  return o;
}

int count(const std::string& s, const std::string& what) {
  int n = 0;
  for (size_t at = s.find(what); at != std::string::npos; at = s.find(what, at + 1)) ++n;
  return n;
}

std::string lines(int n, const std::string& line) {
  std::string s;
  for (int i = 0; i < n; ++i) s += line + "\n";
  return s;
}

TEST(TextPdf, GoldenFile) {
  const TextPdfOptions o = fixedOptions();
  EXPECT_EQ(o.CreationDate, "20231114221320");
  const std::string text = "Riff (intro)\r\n   e|---0---3---|   \n" + std::string(130, '-') +
                           "\nx\fnext page\n" + std::string(100, 'a') + " " + std::string(40, 'b') + "\n";
  const std::string pdf = TextToPDF(text, o);
  const std::string golden = ReadWholeFile(PLECTARO_SOURCE_DIR "/tests/data/text_tab.pdf");
  EXPECT_EQ(pdf, golden);
}

// Where the writer breaks pages and lines, for the default letter page: 75 lines a page and
// 115 characters a line.
TEST(TextPdf, PagesAndLines) {
  struct Case {
    const char* name;
    std::string text;
    int pages;
    std::string mustHold;
  };
  const Case cases[] = {
      {"empty text: one page with its number only", "", 1, "BT\r/F1 8 Tf\r1 0 0 1 50 752 Tm\r9.6 TL\r1 0 0 1 306 25 Tm\r(1) Tj"},
      {"no break character: cut at exactly 115", std::string(120, '-'), 1,
       "T* (" + std::string(115, '-') + "\r\n) Tj\rT* (-----\r\n) Tj"},
      {"cut after the last break character in the second half", std::string(80, 'a') + "," + std::string(60, 'b'), 1,
       "T* (" + std::string(80, 'a') + ",\r\n) Tj"},
      {"a break character in the first half does not count", std::string(20, 'a') + " " + std::string(120, 'b'), 1,
       "T* (" + std::string(20, 'a') + " " + std::string(94, 'b') + "\r\n) Tj"},
      {"form feed: the line goes on the new page", "one\ntwo\fthree\n", 2, "(1) Tj\r/F1 8 Tf\rET"},
      {"75 lines fill one page", lines(75, "x"), 1, "(1) Tj"},
      {"the 76th line starts page two", lines(76, "x"), 2, "(2) Tj"},
      // A folded line counts three lines for its two pieces.
      {"folded line and 72 more fit", lines(1, std::string(130, '-')) + lines(72, "x"), 1, "(1) Tj"},
      {"folded line and 73 more do not", lines(1, std::string(130, '-')) + lines(73, "x"), 2, "(2) Tj"},
      {"parentheses escaped, blanks trimmed", "  (a) b  \n", 1, "T* (\\(a\\) b\r\n) Tj"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string pdf = TextToPDF(c.text, fixedOptions());
    EXPECT_EQ(count(pdf, "/Type /Page\r"), c.pages);
    EXPECT_NE(pdf.find("/Count " + std::to_string(c.pages) + "\r"), std::string::npos);
    EXPECT_NE(pdf.find(c.mustHold), std::string::npos);
  }
  EXPECT_EQ(TextToPDF("", fixedOptions()).find("T* ("), std::string::npos);
}

// The table's offsets and startxref run one byte short for every line written before them.
TEST(TextPdf, OffsetsDriftByOneBytePerLine) {
  const std::string pdf = TextToPDF(lines(200, "e|--3--|"), fixedOptions());
  std::smatch m;
  ASSERT_TRUE(std::regex_search(pdf, m, std::regex("startxref\r(\\d+)\r%%EOF\r$")));
  const size_t table = pdf.find("\r0 " );
  ASSERT_NE(table, std::string::npos);
  // Line ends are the CRs without an LF behind them; a CR LF sits inside every shown string.
  auto linesBefore = [&](size_t at) {
    return static_cast<long>(count(pdf.substr(0, at), "\r") - count(pdf.substr(0, at), "\r\n"));
  };
  EXPECT_EQ(std::stol(m[1]), static_cast<long>(table + 1) - linesBefore(table + 1));
  EXPECT_EQ(pdf.find("xref"), pdf.find("startxref") + 5);  // no "xref" keyword of its own
  for (int object : {1, 4, 7, 12}) {
    const size_t at = pdf.find("\r" + std::to_string(object) + " 0 obj\r") + 1;
    char entry[32];
    std::snprintf(entry, sizeof entry, "%010ld 00000 n ", static_cast<long>(at) - linesBefore(at));
    EXPECT_NE(pdf.find(entry), std::string::npos) << object;
  }
}

TEST(TextPdf, TooManyPagesIsAnErrorAndFilesAreAtomic) {
  EXPECT_THROW(TextToPDF(lines(1700, "\f"), fixedOptions()), FileError);
  const auto dir = std::filesystem::temp_directory_path();
  EXPECT_FALSE(TextToPDF(dir / "plectaro-no-such-input.txt", dir / "plectaro-never.pdf", fixedOptions()));
  EXPECT_FALSE(std::filesystem::exists(dir / "plectaro-never.pdf"));
}

}  // namespace
}  // namespace plectaro
