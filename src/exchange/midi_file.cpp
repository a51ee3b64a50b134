#include "exchange/midi_file.h"

#include <algorithm>
#include <limits>

namespace plectaro {

namespace {

// Reads big-endian numbers and variable-length quantities from a span of bytes, refusing to
// go past its end.
class ByteReader {
 public:
  ByteReader(std::string_view bytes, std::string what) : bytes_(bytes), what_(std::move(what)) {}

  size_t pos() const { return pos_; }
  size_t left() const { return bytes_.size() - pos_; }
  bool atEnd() const { return pos_ >= bytes_.size(); }

  uint8_t u8() {
    need(1);
    return static_cast<uint8_t>(bytes_[pos_++]);
  }
  uint8_t peek() {
    need(1);
    return static_cast<uint8_t>(bytes_[pos_]);
  }
  uint32_t u16() {
    uint32_t v = u8();
    return (v << 8) | u8();
  }
  uint32_t u32() {
    uint32_t v = u16();
    return (v << 16) | u16();
  }
  // At most four bytes, 28 bits: a longer run of continuation bytes is garbage, not a number.
  uint32_t vlq() {
    uint32_t v = 0;
    for (int i = 0; i < 4; ++i) {
      const uint8_t b = u8();
      v = (v << 7) | (b & 0x7F);
      if (!(b & 0x80)) return v;
    }
    fail("a variable-length number runs over four bytes");
  }
  std::string_view take(size_t n, const std::string& thing) {
    if (n > left())
      fail(thing + " claims " + std::to_string(n) + " bytes but only " +
           std::to_string(left()) + " remain");
    std::string_view s = bytes_.substr(pos_, n);
    pos_ += n;
    return s;
  }
  [[noreturn]] void fail(const std::string& why) const {
    throw MidiFileError("not a readable MIDI file: " + what_ + ": " + why + " (at byte " +
                        std::to_string(pos_) + ")");
  }

 private:
  void need(size_t n) {
    if (n > left()) fail("the data ends in the middle of an event");
  }
  std::string_view bytes_;
  std::string what_;
  size_t pos_ = 0;
};

int dataBytesOf(uint8_t status) {
  const int kind = status & 0xF0;
  return (kind == 0xC0 || kind == 0xD0) ? 1 : 2;
}

MidiTrackChunk parseTrack(std::string_view body, int number) {
  ByteReader r(body, "track " + std::to_string(number));
  MidiTrackChunk track;
  // An event takes at least three bytes in all but rare files; reserving that many saves
  // moving every event of a long track several times. Capped so that a track of one huge
  // system-exclusive message does not reserve room for millions of events.
  track.Events.reserve(std::min<size_t>(body.size() / 3 + 1, size_t(1) << 18));
  uint64_t tick = 0;
  uint8_t running = 0;
  while (!r.atEnd()) {
    tick += r.vlq();
    if (tick > std::numeric_limits<uint32_t>::max()) r.fail("the track lasts longer than a MIDI file can count");
    MidiEvent e;
    e.Tick = static_cast<uint32_t>(tick);
    uint8_t status = r.peek();
    if (status & 0x80) {
      r.u8();
    } else if (running) {
      status = running;  // running status: the data bytes follow at once
    } else {
      r.fail("a data byte comes where a status byte was expected");
    }
    if (status == 0xFF) {
      e.Status = 0xFF;
      e.Data1 = r.u8();
      const uint32_t len = r.vlq();
      e.Meta = std::string(r.take(len, "a meta event"));
      if (e.Data1 == kMetaEndOfTrack) break;  // whatever follows in the chunk is not music
      track.Events.push_back(std::move(e));
      continue;
    }
    if (status == 0xF0 || status == 0xF7) {
      // System-exclusive data is for one maker's devices; the score has no place for it.
      r.take(r.vlq(), "a system-exclusive message");
      running = 0;
      continue;
    }
    if (status >= 0xF0) r.fail("a system message that does not belong in a file");
    running = status;
    e.Status = status;
    // Some writers set the top bit of a data byte by mistake; the value is in the low seven.
    e.Data1 = r.u8() & 0x7F;
    if (dataBytesOf(status) == 2) e.Data2 = r.u8() & 0x7F;
    track.Events.push_back(std::move(e));
  }
  return track;
}

void putU16(std::string& out, uint32_t v) {
  out += static_cast<char>((v >> 8) & 0xFF);
  out += static_cast<char>(v & 0xFF);
}
void putU32(std::string& out, uint32_t v) {
  putU16(out, v >> 16);
  putU16(out, v & 0xFFFF);
}
void putVlq(std::string& out, uint32_t v) {
  v &= 0x0FFFFFFF;
  char buf[4];
  int n = 0;
  buf[n++] = static_cast<char>(v & 0x7F);
  while ((v >>= 7) != 0) buf[n++] = static_cast<char>((v & 0x7F) | 0x80);
  while (n > 0) out += buf[--n];
}

}  // namespace

std::string MidiTrackChunk::name() const {
  for (const MidiEvent& e : Events)
    if (e.isMeta() && e.Data1 == kMetaTrackName) return e.Meta;
  return "";
}

MidiFileData ParseMidiFile(std::string_view bytes) {
  ByteReader r(bytes, "header");
  if (bytes.size() < 14 || bytes.substr(0, 4) != "MThd") r.fail("it does not begin with \"MThd\"");
  r.take(4, "the header tag");
  const uint32_t headerLen = r.u32();
  if (headerLen < 6) r.fail("the header is shorter than six bytes");
  std::string_view header = r.take(headerLen, "the header chunk");
  ByteReader h(header, "header");
  MidiFileData file;
  file.Format = static_cast<uint16_t>(h.u16());
  const uint32_t declaredTracks = h.u16();
  const uint32_t division = h.u16();
  if (file.Format > 2) h.fail("format " + std::to_string(file.Format) + " is unknown");
  if (division & 0x8000) h.fail("times in SMPTE frames are not supported, only ticks per quarter note");
  if (division == 0) h.fail("zero ticks per quarter note");
  file.Division = static_cast<uint16_t>(division);

  // Chunks other than tracks are skipped, as the standard asks; a few stray bytes after the
  // last chunk (padding some writers add) are not a chunk and are ignored.
  while (r.left() >= 8) {
    const std::string_view tag = r.take(4, "a chunk tag");
    const uint32_t len = r.u32();
    std::string_view body = r.take(len, "a chunk");
    if (tag == "MTrk") file.Tracks.push_back(parseTrack(body, static_cast<int>(file.Tracks.size()) + 1));
  }
  if (file.Tracks.empty()) r.fail("it holds no track");
  (void)declaredTracks;  // the chunks found are what counts: some writers count wrongly
  return file;
}

MidiFileData ReadMidiFile(const std::string& path) {
  const std::string bytes = ReadWholeFile(path, size_t(256) << 20);
  try {
    return ParseMidiFile(bytes);
  } catch (const MidiFileError& e) {
    throw MidiFileError("\"" + path + "\" is " + e.what());
  }
}

std::string SerializeMidiFile(const MidiFileData& file) {
  std::string out = "MThd";
  putU32(out, 6);
  putU16(out, file.Format);
  putU16(out, static_cast<uint32_t>(file.Tracks.size()));
  putU16(out, file.Division);
  for (const MidiTrackChunk& track : file.Tracks) {
    std::string body;
    body.reserve(track.Events.size() * 4 + 16);
    uint32_t last = 0;
    uint8_t running = 0;
    bool ended = false;
    for (const MidiEvent& e : track.Events) {
      const uint32_t tick = e.Tick < last ? last : e.Tick;
      putVlq(body, tick - last);
      last = tick;
      if (e.isMeta()) {
        body += static_cast<char>(0xFF);
        body += static_cast<char>(e.Data1);
        putVlq(body, static_cast<uint32_t>(e.Meta.size()));
        body += e.Meta;
        running = 0;
        if (e.Data1 == kMetaEndOfTrack) {
          ended = true;
          break;
        }
        continue;
      }
      if (e.Status != running) body += static_cast<char>(e.Status);
      running = e.Status;
      body += static_cast<char>(e.Data1 & 0x7F);
      if (dataBytesOf(e.Status) == 2) body += static_cast<char>(e.Data2 & 0x7F);
    }
    if (!ended) body += std::string("\x00\xFF\x2F\x00", 4);
    out += "MTrk";
    putU32(out, static_cast<uint32_t>(body.size()));
    out += body;
  }
  return out;
}

MidiEvent MakeMetaEvent(uint32_t tick, uint8_t type, std::string data) {
  MidiEvent e;
  e.Tick = tick;
  e.Status = 0xFF;
  e.Data1 = type;
  e.Meta = std::move(data);
  return e;
}

MidiEvent MakeTempoEvent(uint32_t tick, uint32_t micros) {
  std::string d;
  d += static_cast<char>((micros >> 16) & 0xFF);
  d += static_cast<char>((micros >> 8) & 0xFF);
  d += static_cast<char>(micros & 0xFF);
  return MakeMetaEvent(tick, kMetaTempo, d);
}

MidiEvent MakeTimeSignatureEvent(uint32_t tick, int numerator, int denominator) {
  int power = 0;
  while ((1 << power) < denominator && power < 7) ++power;
  std::string d;
  d += static_cast<char>(numerator & 0xFF);
  d += static_cast<char>(power);
  d += static_cast<char>(24);  // MIDI clocks per metronome click: a quarter
  d += static_cast<char>(8);   // 32nds per quarter
  return MakeMetaEvent(tick, kMetaTimeSignature, d);
}

uint32_t TempoOf(const MidiEvent& e) {
  if (e.Meta.size() < 3) return 0;
  const auto b = [&](size_t i) { return static_cast<uint32_t>(static_cast<uint8_t>(e.Meta[i])); };
  return (b(0) << 16) | (b(1) << 8) | b(2);
}

bool TimeSignatureOf(const MidiEvent& e, int& numerator, int& denominator) {
  if (e.Meta.size() < 2) return false;
  const int n = static_cast<uint8_t>(e.Meta[0]);
  const int power = static_cast<uint8_t>(e.Meta[1]);
  if (n == 0 || power > 6) return false;
  numerator = n;
  denominator = 1 << power;
  return true;
}

}  // namespace plectaro
