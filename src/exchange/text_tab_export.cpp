#include "exchange/text_tab_export.h"

#include <algorithm>

#include "score/file_io.h"
#include "score/text_codec.h"
#include "score/value_text.h"

namespace plectaro {

namespace {

constexpr std::string_view kEol = "\r\n";

// Upper case as the code page knows it, so "é" becomes "É" as well as "a" becoming "A".
std::string upperCase(std::string_view utf8) {
  std::string bytes = Utf8ToCp1252(utf8);
  for (char& ch : bytes) {
    const auto c = static_cast<unsigned char>(ch);
    if ((c >= 'a' && c <= 'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7))
      ch = static_cast<char>(c - 0x20);
    else if (c == 0x9A || c == 0x9C || c == 0x9E)  // š œ ž
      ch = static_cast<char>(c - 0x10);
    else if (c == 0xFF)  // ÿ
      ch = static_cast<char>(0x9F);
  }
  return Cp1252ToUtf8(bytes);
}

void line(std::string& out, std::string_view text = {}) {
  out += text;
  out += kEol;
}

// The notice, the title line and the tempo line that open both files.
void writeHead(std::string& out, const Score& s, const TextExportOptions& o, bool html) {
  if (o.CopyrightWarning) {
    const std::string hashes(64, '#');
    line(out, hashes);
    line(out, "# This file is the author's own work and represents only their #");
    line(out, "# interpretation of the song. This file may only be used for   #");
    line(out, "# scholarship, study, or private research.                     #");
    line(out, hashes);
    line(out);
  }
  std::string title = upperCase(s.Title) + " - " + upperCase(s.Artist);
  if (html) {
    // A title holding "<" or "&" would otherwise vanish into markup in the browser.
    std::string escaped;
    for (char c : title) {
      if (c == '<') escaped += "&lt;";
      else if (c == '>') escaped += "&gt;";
      else if (c == '&') escaped += "&amp;";
      else escaped += c;
    }
    title = std::move(escaped);
  }
  line(out, title);
  line(out, "Tempo:" + FormatFloat(s.Tempo));
}

const Track& checkedTrack(const Score& s, int track) { return s.track(track); }

}  // namespace

std::string PadDashes(std::string_view fret) {
  if (fret.size() >= 3) return std::string(fret.substr(fret.size() - 3));
  return std::string(3 - fret.size(), '-') + std::string(fret);
}

std::string PadBlanks(std::string_view text) {
  if (text.size() >= 3) return std::string(text);
  return std::string(3 - text.size(), ' ') + std::string(text);
}

std::string_view TabCellMark(const NoteSlot& n) {
  switch (n.Technique) {
    case kHammerOnPullOff: return "h-";
    case kLegatoSlide: return "/-";
    case kSlideDown: return "\\-";
    case kSlideUp: return "/-";
    case kStaccato: return ".-";
    default: break;
  }
  if (n.HasBend) return "b-";
  if (n.Harmonic != kNoHarmonic) return "*-";
  if (n.LetRing) return ">-";
  return "--";
}

std::string_view EffectCellMark(const Beat& b) {
  if (b.HasTremoloBar) return "  ^";
  switch (b.ChordTechnique) {
    case kFadeIn: return "  <";
    case kPalmMute: return "  m";
    case kTapping: return " T.";
    case kVibrato:
    case kWideVibrato: return "  ~";
    default: return "   ";
  }
}

std::string WriteTabRows(const Score& s, int track, int maxLineLength) {
  const Track& tr = checkedTrack(s, track);
  const int lastBar = s.GetLastBar(track);
  const int lines = std::clamp<int>(tr.Tuning.NumStrings, 0, kMaxStrings);
  const size_t maxLen = static_cast<size_t>(std::max(maxLineLength, 0));
  std::string out;
  // Every beat is five characters on every line, plus six per bar.
  out.reserve(static_cast<size_t>(lastBar + 1) * static_cast<size_t>(lines + 1) * 32);
  int exportBar = 0;
  std::string text;
  while (exportBar <= lastBar) {
    int bar = exportBar;
    for (int k = 0; k <= lines; ++k) {
      const std::string_view prefix = k == 0 ? "   " : "|--";
      text.clear();
      bar = exportBar;
      // A row holds at least one bar, so a maximum of zero cannot stall the export.
      while ((text.size() < maxLen || bar == exportBar) && bar <= lastBar) {
        text += prefix;
        const TrackBar& tb = *tr.Bars[static_cast<size_t>(bar)];
        for (const Beat& beat : tb.Beats) {
          if (k > 0) {
            const NoteSlot& n = beat.Notes[static_cast<size_t>(k - 1)];
            text += PadDashes(n.Fret);
            text += TabCellMark(n);
          } else {
            text += EffectCellMark(beat);
            text += "  ";
          }
        }
        if (k > 0) {
          text += "--|";
        } else {
          const int16_t count = s.barInfo(bar).RepeatClose;
          text += count > 0 ? PadBlanks("x" + std::to_string(count + 1)) : std::string("   ");
        }
        ++bar;
      }
      line(out, text);
    }
    line(out);
    exportBar = bar;
  }
  return out;
}

std::string ExportASCIIText(const Score& s, int track, const TextExportOptions& o) {
  std::string out;
  writeHead(out, s, o, false);
  line(out);
  line(out);
  line(out);
  out += WriteTabRows(s, track, o.MaxLineLength);
  line(out);
  line(out, "Created with Plectaro (" + std::string(kProductWebAddress) + ")");
  return Utf8ToCp1252(out);
}

std::string ExportHTMLText(const Score& s, int track, const TextExportOptions& o) {
  const std::string web(kProductWebAddress);
  std::string out;
  line(out, "<html>");
  line(out, "<head>");
  line(out, "<title>Created With Plectaro - " + web + "</title>");
  line(out, "</head>");
  line(out, "<pre>");
  // The font lines are written as they always were (no ">" on the opening tag, no text):
  // pages people saved keep looking the same.
  line(out, "<font face= \"Courier New, Courier, mono\"</font>");
  line(out, "<font size= \"+1\"</font>");
  line(out, "<a href= \"" + web + "\">Click Here to get Plectaro!</a>");
  writeHead(out, s, o, true);
  line(out);
  out += WriteTabRows(s, track, o.MaxLineLength);
  line(out);
  line(out, "</pre>");
  return Utf8ToCp1252(out);
}

void ExportASCII(const Score& s, int track, const TextExportOptions& o,
                 const std::filesystem::path& path) {
  WriteFileAtomically(path, ExportASCIIText(s, track, o));
}

void ExportHTML(const Score& s, int track, const TextExportOptions& o,
                const std::filesystem::path& path) {
  WriteFileAtomically(path, ExportHTMLText(s, track, o));
}

}  // namespace plectaro
