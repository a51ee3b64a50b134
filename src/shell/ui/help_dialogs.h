// Help > Getting Started and Help > About.
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace plectaro {

// The libraries the program runs on, one "Name version" each: Qt as loaded now, the others as
// the build found them.
QStringList LibrariesInUse();

// The About box's text: the program and its version, then the libraries.
QString AboutText(const QStringList& libraries);
void ShowAbout(QWidget* parent, const QString& title);

// One page for a first-time user: entering notes, lengths, playing, where the tools are.
QString GettingStartedHtml();
void ShowGettingStarted(QWidget* parent, const QString& title);

}  // namespace plectaro
