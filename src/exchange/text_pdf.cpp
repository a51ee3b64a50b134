#include "exchange/text_pdf.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "score/file_io.h"
#include "score/score_records.h"
#include "score/text_codec.h"

namespace plectaro {

namespace {

constexpr int kMaxObjects = 5000;

// Round half to even, as the old arithmetic does when it stores a fraction in an integer.
long long roundEven(double v) { return static_cast<long long>(std::nearbyint(v)); }

// Sizes are fixed-point numbers with four decimals; they print without trailing zeros.
std::string fixed(double v) {
  const long long tenThousandths = roundEven(v * 10000);
  std::string s = std::to_string(tenThousandths / 10000);
  long long frac = std::llabs(tenThousandths % 10000);
  if (tenThousandths < 0 && s[0] != '-') s.insert(s.begin(), '-');
  if (frac == 0) return s;
  char digits[8];
  std::snprintf(digits, sizeof digits, "%04lld", frac);
  std::string d = digits;
  while (d.back() == '0') d.pop_back();
  return s + "." + d;
}

std::string lower(std::string s) {
  for (char& c : s)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return s;
}

// Blanks only: tabs and other white space stay, as the old trim left them.
std::string trimBlanks(const std::string& s) {
  size_t a = 0;
  size_t b = s.size();
  while (a < b && s[a] == ' ') ++a;
  while (b > a && s[b - 1] == ' ') --b;
  return s.substr(a, b - a);
}

bool isBreakChar(char c) {
  static constexpr std::string_view kBreak = "*&^%$#,. ;<=>[])}!\"";
  return kBreak.find(c) != std::string_view::npos;
}

class Writer {
 public:
  explicit Writer(const TextPdfOptions& o) : opt_(o) {
    pageWidth_ = static_cast<int32_t>(roundEven(o.PageWidthInches * 72));
    pageHeight_ = static_cast<int32_t>(roundEven(o.PageHeightInches * 72));
    fontSize_ = roundEven(o.FontSize * 10000) / 10000.0;
    leading_ = roundEven(fontSize_ * 1.2 * 10000) / 10000.0;
    linesPerPage_ = leading_ > 0 ? static_cast<int32_t>(roundEven((pageHeight_ - 72) / leading_)) : 1;
    const std::string font = lower(o.FontName);
    const double perPoint = font == "courier" ? 1.5 : font == "arial" ? 2.0 : 2.2;
    maxChars_ = fontSize_ > 0 ? static_cast<int32_t>(roundEven(pageWidth_ * perPoint / fontSize_)) : 1;
    if (maxChars_ < 1) maxChars_ = 1;  // a zero width would never let a long line end
    pageNumberX_ = pageWidth_ / 2.0;
  }

  std::string run(std::string_view text) {
    emit("%PDF-1.2");
    emit("%\xE2\xE3\xCF\xD3");
    openObject(1);
    emit("<<");
    emit("/Author (", cp(opt_.Author), ")");
    emit("/CreationDate (D:", opt_.CreationDate, ")");
    emit("/Creator (", cp(opt_.Creator), ")");
    emit("/Producer (Plectaro 4.0)");
    emit("/Title (", cp(opt_.Title), ")");
    emit("/Subject (", cp(opt_.Subject), ")");
    emit("/Keywords (", cp(opt_.Keywords), ")");
    emit(">>");
    emit("endobj");
    // The catalog (2) and the page tree (3) are written last, when the pages are known.
    numObjects_ = 3;
    openObject(4);
    emit("<<");
    emit("/Type /Font");
    emit("/Subtype /Type1");
    emit("/Name /F1");
    emit("/Encoding 5 0 R");
    emit("/BaseFont /", opt_.FontName);
    emit(">>");
    emit("endobj");
    openObject(5);
    emit("<<");
    emit("/Type /Encoding");
    emit("/BaseEncoding /WinAnsiEncoding");
    emit(">>");
    emit("endobj");
    openObject(6);
    emit("<<");
    emit("  /Font << /F1 4 0 R >>");
    emit("  /ProcSet [ /PDF /Text ]");
    emit(">>");
    emit("endobj");

    startPage();
    for (std::string line : splitLines(Utf8ToCp1252(text))) {
      ++lineOnPage_;
      if (lineOnPage_ >= linesPerPage_ || hasFormFeed(line)) newPage();
      line = trimBlanks(escapeParens(line));
      if (static_cast<int32_t>(line.size()) > maxChars_) {
        while (static_cast<int32_t>(line.size()) > maxChars_) {
          std::string piece = line.substr(0, static_cast<size_t>(maxChars_));
          const long long half = roundEven(maxChars_ / 2.0);
          for (long long i = maxChars_; i >= half && i >= 1; --i) {
            if (isBreakChar(piece[static_cast<size_t>(i - 1)])) {
              piece.resize(static_cast<size_t>(i));
              break;
            }
          }
          emit("T* (", piece, "\r\n) Tj");
          line = line.substr(piece.size());
          ++lineOnPage_;
          if (lineOnPage_ >= linesPerPage_ || hasFormFeed(line)) newPage();
        }
        ++lineOnPage_;
      }
      emit("T* (", line, "\r\n) Tj");
    }
    endPage();

    openObject(2, false);
    emit("<<");
    emit("/Type /Catalog");
    emit("/Pages 3 0 R");
    emit(">>");
    emit("endobj");
    openObject(3, false);
    emit("<<");
    emit("/Type /Pages");
    emit("/Count ", numPages_);
    emit("/MediaBox [ 0 0 ", pageWidth_, " ", pageHeight_, " ]");
    std::string kids = "/Kids [ ";
    for (int p = 1; p <= numPages_; ++p) kids += std::to_string(pageObjects_[static_cast<size_t>(p)]) + " 0 R ";
    emit(kids + "]");
    emit(">>");
    emit("endobj");
    const int32_t xref = bytePosition_;
    emit("0 ", numObjects_ + 1);
    emit("0000000000 65535 f ");
    for (int i = 1; i <= numObjects_; ++i) {
      char entry[32];
      std::snprintf(entry, sizeof entry, "%010d 00000 n ", objectOffsets_[static_cast<size_t>(i)]);
      emit(entry);
    }
    emit("trailer");
    emit("<<");
    emit("/Size ", numObjects_ + 1);
    emit("/Root 2 0 R");
    emit("/Info 1 0 R");
    emit(">>");
    emit("startxref");
    emit(xref);
    emit("%%EOF");
    return std::move(out_);
  }

 private:
  static std::string cp(const std::string& utf8) { return Utf8ToCp1252(utf8); }

  static bool hasFormFeed(const std::string& s) { return s.find('\f') != std::string::npos; }

  static std::string escapeParens(const std::string& s) {
    std::string r;
    r.reserve(s.size() + 8);
    for (char c : s) {
      if (c == '(' || c == ')') r += '\\';
      r += c;
    }
    return r;
  }

  // Lines as a line reader sees them: CR LF, LF and a lone CR all end one; a last line
  // without an end still counts, an empty text has no line at all.
  static std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::string cur;
    for (size_t i = 0; i < text.size(); ++i) {
      const char c = text[i];
      if (c == '\r' || c == '\n') {
        lines.push_back(std::move(cur));
        cur.clear();
        if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
      } else {
        cur += c;
      }
    }
    if (!cur.empty()) lines.push_back(std::move(cur));
    return lines;
  }

  // One line of the file, from its pieces appended in place: a text with a form feed on every
  // line makes thousands of pages of a dozen lines each, and joining every line into a string
  // of its own first doubled the work. The position count leaves out the CR that ends every
  // line: see the header.
  template <class... Parts>
  void emit(const Parts&... parts) {
    const size_t before = out_.size();
    (append(parts), ...);
    bytePosition_ += static_cast<int32_t>(out_.size() - before);
    out_ += '\r';
  }
  void append(std::string_view s) { out_ += s; }
  void append(int n) {
    char digits[16];
    out_.append(digits, std::to_chars(digits, digits + sizeof digits, n).ptr);
  }

  void openObject(int n, bool count = true) {
    if (n >= kMaxObjects) throw FileError("The text is too long for one PDF file: it needs more than 5000 objects");
    if (count) numObjects_ = n;
    objectOffsets_[static_cast<size_t>(n)] = bytePosition_;
    emit(n, " 0 obj");
  }

  void startPage() {
    ++numPages_;
    if (numPages_ >= kMaxObjects) throw FileError("The text is too long for one PDF file: it needs more than 5000 pages");
    const int page = numObjects_ + 1;
    pageObjects_[static_cast<size_t>(numPages_)] = page;
    openObject(page);
    emit("<<");
    emit("/Type /Page");
    emit("/Parent 3 0 R");
    emit("/Resources 6 0 R");
    emit("/Contents ", page + 1, " 0 R");
    emit("/Rotate ", opt_.PageRotation);
    emit(">>");
    emit("endobj");
    openObject(page + 1);
    emit("<<");
    emit("/Length ", page + 2, " 0 R");
    emit(">>");
    emit("stream");
    streamStart_ = bytePosition_;
    emit("BT");
    emit("/F1 ", fixed(fontSize_), " Tf");
    emit("1 0 0 1 50 ", pageHeight_ - 40, " Tm");
    emit(fixed(leading_), " TL");
  }

  void endPage() {
    emit("1 0 0 1 ", fixed(pageNumberX_), " 25 Tm");
    emit("(", numPages_, ") Tj");
    emit("/F1 ", fixed(fontSize_), " Tf");
    emit("ET");
    const int32_t length = bytePosition_ - streamStart_;
    emit("endstream");
    emit("endobj");
    openObject(numObjects_ + 1);
    emit(length);
    emit("endobj");
    lineOnPage_ = 0;
  }

  void newPage() {
    endPage();
    startPage();
  }

  const TextPdfOptions& opt_;
  int32_t pageWidth_ = 612;
  int32_t pageHeight_ = 792;
  double fontSize_ = 8;
  double leading_ = 9.6;
  int32_t linesPerPage_ = 75;
  int32_t maxChars_ = 115;
  double pageNumberX_ = 306;
  std::array<int32_t, kMaxObjects> objectOffsets_{};
  std::array<int32_t, kMaxObjects> pageObjects_{};
  int numObjects_ = 0;
  int numPages_ = 0;
  int32_t lineOnPage_ = -1;
  int32_t bytePosition_ = 0;
  int32_t streamStart_ = 0;
  std::string out_;
};

}  // namespace

TextPdfOptions TextPdfOptionsFor(const Score& score) {
  TextPdfOptions o;
  o.Author = score.Author;
  o.Creator = score.Artist;
  o.Subject = "Plectaro 4 Tab";
  o.Title = score.Title;
  o.CreationDate = PdfCreationDate();
  return o;
}

std::string PdfCreationDate() {
  std::tm parts{};
  if (const char* epoch = std::getenv("SOURCE_DATE_EPOCH"); epoch && *epoch) {
    char* end = nullptr;
    const long long secs = std::strtoll(epoch, &end, 10);
    const std::time_t t = static_cast<std::time_t>(secs);
    if (*end == '\0' && gmtime_r(&t, &parts)) {
      char buf[32];
      std::strftime(buf, sizeof buf, "%Y%m%d%H%M%S", &parts);
      return buf;
    }
  }
  const std::time_t now = std::time(nullptr);
  localtime_r(&now, &parts);
  char buf[32];
  std::strftime(buf, sizeof buf, "%Y%m%d%H%M%S", &parts);
  return buf;
}

std::string TextToPDF(std::string_view text, const TextPdfOptions& options) {
  return Writer(options).run(text);
}

bool TextToPDF(const std::filesystem::path& input, const std::filesystem::path& output,
               const TextPdfOptions& options) {
  std::error_code ec;
  if (!std::filesystem::exists(input, ec)) return false;
  const std::string text = Cp1252ToUtf8(ReadWholeFile(input));
  WriteFileAtomically(output, TextToPDF(text, options));
  return true;
}

void ExportPDF(const Score& score, int track, const TextExportOptions& options, const std::filesystem::path& path) {
  // The text goes through memory instead of a temporary file, so nothing is left behind
  // when the conversion stops with an error.
  const std::string text = Cp1252ToUtf8(ExportASCIIText(score, track, options));
  WriteFileAtomically(path, TextToPDF(text, TextPdfOptionsFor(score)));
}

}  // namespace plectaro
