// The everyday helpers round the editor: the fretboard and piano panels, Find and Replace,
// the zoom of the page view, and the speed trainer of the Sound menu.
#pragma once

namespace plectaro {

class MainWindow;
class Player;
class Session;
struct EditContext;

// `player` may be null (no playback in the build): the trainer stays greyed out and the
// panels show only the cursor's beat.
void WirePractice(MainWindow& window, Session& session, EditContext& edit, Player* player);

}  // namespace plectaro
