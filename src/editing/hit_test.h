// The mouse on the document picture, and keeping the cursor in sight. Both read the page
// layout of the last draw (Document::Layout of the current track, in picture coordinates), so
// a click finds exactly the bar, beat and string that were drawn under it.
#pragma once

#include "editing/edit_context.h"
#include "editing/keys.h"

namespace plectaro {

enum class MouseButton { Left, Right, Middle };

struct HitResult {
  bool hit = false;    // the point lies on a bar of the current track
  int bar = -1;
  int beat = 0;        // nearest beat, clamped to the bar's beats
  int string = -1;     // tab line under the point, -1 when it is off the tab staff
  int line = -1;       // pitch of the notation staff under the point, -1 off the staves
  bool operator==(const HitResult&) const = default;
};

// Which bar, beat and string of `track` lie under (x, y). Empty when the track has not been
// laid out or the point is beside every bar.
HitResult HitTest(const Document& doc, int track, double x, double y);

// picDocument_MouseDown: a click places the cursor (the string only when the click is on the
// tab staff; on a notation staff the line, switching notation entry on); a right click then
// opens the right-click menu. Then the document is drawn.
void picDocument_MouseDown(EditContext& ctx, MouseButton button, Modifiers mods, double x, double y);

// The mouse moved with the left button held since a press: marks from where the press put the
// cursor to the beat under the mouse; with Ctrl in all tracks.
void picDocument_MouseDrag(EditContext& ctx, Modifiers mods, double x, double y);

// The vertical scroll value (steps of 8 picture units) that brings the cursor's row into a
// picture of this height, or `vScroll` itself when it is in sight already.
int ScrollToShowCursor(const Document& doc, int vScroll, double pictureHeight);

}  // namespace plectaro
