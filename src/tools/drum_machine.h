// What the Drum Machine window holds and does, without the window: the pattern, its file name
// and dirty flag, the step selection and the clipboard, and the edits with their limits. The
// window draws it and turns clicks into these calls; the beat generator drives it through the
// public setters.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/drum_pattern.h"

namespace plectaro {

// Limits of the add buttons. 256 steps are sixteen bars of sixteenths; 46 instruments are
// every sound of the percussion list once.
inline constexpr int kMaxDrumSteps = 256;
inline constexpr int kMaxDrumInstruments = 46;

class DrumMachine {
 public:
  DrumMachine() : pattern(NewDrumPattern()) {}

  DrumPattern pattern;
  std::string fileName;  // "" while untitled
  bool dirty = false;

  // " - [Untitled]" or " - [name.p4d]", after the window's caption.
  std::string titleSuffix() const;

  // ---- the setters of the beat generator ----
  // Despite its name, sets one cell.
  void SetTrackNameTo(int step, int instrument, bool on);
  // Sets one step's length code.
  void SetFileStatusTo(int step, int code);
  // Every cell off.
  void ClearFile();
  // Steps 0..lastStep and these instruments, in this order, at full volume.
  void ResizeFileTo(int lastStep, const std::vector<std::string>& instruments);
  // Every step back to a plain sixteenth.
  void ResetAllTiming();

  // ---- edits; each returns "" or the message key that refuses it ----
  void toggle(int step, int instrument);
  std::string addStep();
  std::string removeStep();
  std::string addInstrument();
  std::string removeInstrument(int instrument);
  void setInstrument(int instrument, const std::string& name);
  void setVolume(int instrument, int volume);
  void setTempo(int tempo);
  // The length of a step: code 0..6, a tuplet list entry (0 none, 1.. the tuplet codes 0..8).
  void setStepLength(int step, int code);
  void setStepTuplet(int step, int listIndex);
  void setStepDotted(int step, bool dotted);

  // ---- the step selection and the clipboard ----
  // Marks steps first..last (either order); nullopt while nothing is marked.
  void select(int first, int last);
  void clearSelection() { selection_.reset(); }
  std::optional<std::pair<int, int>> selection() const { return selection_; }
  std::string copy();
  std::string cut();
  // Inserts the clipboard's steps before `step` (steps() appends).
  std::string paste(int step);
  bool hasClipboard() const { return !clipboard_.Pattern.empty(); }

  // A fresh pattern, untitled and clean.
  void NewFile();

 private:
  void touched() { dirty = true; }
  bool validStep(int step) const { return step >= 0 && step < pattern.steps(); }

  std::optional<std::pair<int, int>> selection_;
  DrumPattern clipboard_;
};

}  // namespace plectaro
