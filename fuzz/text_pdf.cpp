// Text PDF writer: any text becomes a PDF or a clear error; the page count the catalog names
// matches the page objects written, and the table starts where startxref says (less the
// drift of one byte a line that the format keeps).
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "exchange/text_pdf.h"
#include "score/file_io.h"
#include "score/text_codec.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text = plectaro::Cp1252ToUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
  plectaro::TextPdfOptions options;
  options.CreationDate = "20240101000000";
  std::string pdf;
  try {
    pdf = plectaro::TextToPDF(text, options);
  } catch (const plectaro::FileError&) {
    return 0;
  }
  size_t pages = 0;
  // Counted with the dictionary's opening line in front: the text itself may say "/Type /Page".
  const std::string pageObject = "<<\r/Type /Page\r";
  for (size_t at = pdf.find(pageObject); at != std::string::npos; at = pdf.find(pageObject, at + 1)) ++pages;
  if (pdf.find("/Count " + std::to_string(pages) + "\r") == std::string::npos) std::abort();
  if (pdf.size() < 7 || pdf.compare(pdf.size() - 6, 6, "%%EOF\r") != 0) std::abort();
  return 0;
}
