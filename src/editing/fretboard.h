// The virtual fretboard and piano: which notes of a beat they show, where each string, fret
// and key lies in a panel of a given size, and what a click on them writes at the cursor.
// The panels' widgets only draw this and pass clicks back.
#pragma once

#include <optional>
#include <vector>

#include "editing/edit_context.h"
#include "editing/staff_entry.h"

namespace plectaro {

// A note of a beat as the hand plays it: the string, the fret on the neck (the tab's fret
// plus the capo, since tab under a capo counts from it) and the sounding pitch.
struct HandNote {
  int string = 0;
  int fret = 0;
  int pitch = 0;
  bool operator==(const HandNote&) const = default;
};
std::vector<HandNote> HandNotesOf(const Track& track, const Beat& beat);

constexpr int kFretboardFrets = 24;

// The neck seen from the player: string 0 (the highest) on top, the nut at the left; frets
// narrow toward the body. Left-handed, the picture is mirrored left to right.
struct FretboardGeometry {
  double width = 900, height = 140;
  int strings = 6;
  bool leftHanded = false;

  double openWidth() const { return width * 0.05; }  // room left of the nut for open strings
  double margin() const { return height / (strings + 1) / 2 + 6; }
  double stringY(int string) const;
  // x of the wire that ends fret `f` (0 is the nut), before any mirroring.
  double wireX(int f) const;
  // Centre of the place of fret `f` on a string (f 0: the open string, left of the nut).
  double fretCentreX(int f) const;
  // Mirrors an x for the left-handed view (and back).
  double shown(double x) const { return leftHanded ? width - x : x; }
  // The string and neck fret under a point of the panel; nullopt off the strings.
  std::optional<StringFret> hit(double x, double y) const;
};

// A keyboard of `lowKey`..`highKey` (MIDI keys), white keys side by side, black keys over them.
struct PianoGeometry {
  double width = 900, height = 110;
  int lowKey = 36;   // C2
  int highKey = 96;  // C7

  int whiteCount() const;
  double whiteWidth() const { return width / whiteCount(); }
  struct Box {
    double x, y, w, h;
  };
  Box keyBox(int key) const;
  // The key under a point: a black key wins over the white one under it; nullopt outside.
  std::optional<int> hit(double x, double y) const;
};

// A click on the fretboard: the note at that string and neck fret is written on the cursor's
// beat (replacing what that string held) and the cursor goes to the string. A fret below the
// capo cannot be written under it and says so. One undo step; the beat sounds.
bool WriteFretboardNote(EditContext& ctx, int string, int neckFret);
// A click on the piano: the pitch on the cursor's beat, on the free string that plays it with
// the lowest fret, as the notation writer places it.
bool WritePianoNote(EditContext& ctx, int pitch);

}  // namespace plectaro
