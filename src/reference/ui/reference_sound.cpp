#include "reference/ui/reference_sound.h"

#include "playback/midi_out.h"
#include "playback/qt/player.h"

namespace plectaro {

namespace {

const Track* cursorTrack(const Document& doc) {
  if (doc.CursorTrack < 0 || doc.CursorTrack > doc.score.LastTrack()) return nullptr;
  const Track& t = doc.score.Tracks[static_cast<size_t>(doc.CursorTrack)];
  return t.DrumTrack ? nullptr : &t;
}

}  // namespace

void AttachPlayer(ReferenceEnv& env, Player& player, const Document& doc) {
  Player* p = &player;
  const Document* d = &doc;
  env.soundChord = [p, d](const BeatChord& chord) {
    // A drum track has no chord sound of its own: the first track's guitar plays it then.
    const Track* t = cursorTrack(*d);
    if (!t && !d->score.Tracks.empty()) t = &d->score.Tracks.front();
    if (t) p->soundChordDiagram(*t, chord);
  };
  env.noteOn = [p, d](int pitch) {
    if (p->isPlaying()) return;
    const Track* t = cursorTrack(*d);
    const int channel = t ? t->Channel : 0;
    MIDIProgramChange(p->midi(), channel, p->options().OutputBank, t ? t->Instrument : 24);
    MIDINoteOn(p->midi(), channel, pitch, 100);
  };
  env.noteOff = [p, d](int pitch) {
    if (p->isPlaying()) return;
    const Track* t = cursorTrack(*d);
    MIDINoteOff(p->midi(), t ? t->Channel : 0, pitch);
  };
  env.allNotesOff = [p] {
    if (!p->isPlaying()) MIDIAllNotesOff(p->midi());
  };
}

}  // namespace plectaro
