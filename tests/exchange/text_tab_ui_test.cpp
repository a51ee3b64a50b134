// The web import against a small HTTP server on 127.0.0.1, and the import dialog driven as a
// user would: text in, options set, OK; failures leave the document as it was.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTcpServer>
#include <QTcpSocket>

#include "exchange/qt/web_fetch.h"
#include "exchange/ui/ascii_import_dialog.h"
#include "shell/language.h"

namespace plectaro {
namespace {

const char* kPage =
    "<html><head><title>tab</title></head><body>\n<p>Title: Served Song</p>\n<pre>\n"
    "e|--0--3--|\nB|--1--3--|\nG|--0--0--|\nD|--2--0--|\nA|--3--2--|\nE|-----3--|\n</pre></body></html>\n";

// Answers /tab.html with the page, /missing with 404, and never answers /slow.
class LocalServer {
 public:
  LocalServer() {
    server_.listen(QHostAddress::LocalHost, 0);
    QObject::connect(&server_, &QTcpServer::newConnection, [this] {
      while (QTcpSocket* s = server_.nextPendingConnection()) {
        QObject::connect(s, &QTcpSocket::readyRead, s, [s] {
          const QByteArray request = s->readAll();
          if (request.startsWith("GET /slow")) return;
          const bool found = request.startsWith("GET /tab.html");
          const QByteArray body = found ? QByteArray(kPage) : QByteArray("not here");
          s->write((found ? "HTTP/1.1 200 OK\r\n" : "HTTP/1.1 404 Not Found\r\n") +
                   QByteArray("Content-Type: text/html\r\nConnection: close\r\nContent-Length: ") +
                   QByteArray::number(body.size()) + "\r\n\r\n" + body);
          s->disconnectFromHost();
        });
      }
    });
  }
  QString url(const char* path) const { return QString("http://127.0.0.1:%1%2").arg(server_.serverPort()).arg(path); }

 private:
  QTcpServer server_;
};

int argc = 1;
char arg0[] = "text_tab_ui_test";
char* argv[] = {arg0, nullptr};

class TextTabUi : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!QApplication::instance()) new QApplication(argc, argv);
  }
};

TEST_F(TextTabUi, FetchesFromALocalServer) {
  LocalServer server;
  struct Case {
    QString address;
    int timeoutMs;
    bool ok;
    QString messagePart;
  };
  const Case cases[] = {
      {server.url("/tab.html"), 5000, true, ""},
      {server.url("/missing"), 5000, false, "404"},
      {server.url("/slow"), 300, false, "did not answer"},
      {"ftp://127.0.0.1/tab.txt", 5000, false, "not a web address"},
      {"http://127.0.0.1:1/", 5000, false, ""},  // nobody listens there
  };
  for (const Case& c : cases) {
    QByteArray bytes;
    QString error;
    EXPECT_EQ(FetchWebPage(c.address, bytes, error, c.timeoutMs), c.ok) << c.address.toStdString();
    if (c.ok) {
      EXPECT_EQ(bytes, QByteArray(kPage));
    } else {
      EXPECT_FALSE(error.isEmpty());
      EXPECT_TRUE(error.contains(c.messagePart)) << error.toStdString();
    }
  }
}

void WaitFor(const std::function<bool()>& done) {
  QElapsedTimer t;
  t.start();
  while (!done() && t.elapsed() < 5000) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

TEST_F(TextTabUi, WebImportThroughTheDialog) {
  LocalServer server;
  Document doc;
  const Score empty = doc.score;
  ScriptedPrompter prompter;
  EditContext edit(doc, prompter);
  AsciiImportDialog d(nullptr, edit, TabSource::Web);
  d.findChild<QCheckBox*>("chkGetFileDetails")->setChecked(true);
  d.ImportHTTP(server.url("/tab.html"));
  WaitFor([&] { return !d.text()->toPlainText().isEmpty(); });
  ASSERT_TRUE(d.text()->toPlainText().contains("Served Song"));
  prompter.push(true);  // the current track will be replaced
  d.accept();
  EXPECT_EQ(d.result(), QDialog::Accepted);
  EXPECT_EQ(doc.score.Title, "Served Song");
  EXPECT_EQ(doc.score.note(0, 0, 0, 4).Fret, "3");
  EXPECT_EQ(doc.score.note(0, 0, 1, 5).Fret, "3");
  EXPECT_TRUE(doc.ScoreChanged);
  mnuEditUndo_Click(edit);  // the import is one step of undo
  EXPECT_EQ(doc.score, empty);

  // A page that cannot be had says so in the status line and leaves the text alone.
  AsciiImportDialog missing(nullptr, edit, TabSource::Web);
  missing.ImportHTTP(server.url("/missing"));
  WaitFor([&] { return missing.status()->text().contains("404"); });
  EXPECT_TRUE(missing.status()->text().contains("404")) << missing.status()->text().toStdString();
  EXPECT_TRUE(missing.text()->toPlainText().isEmpty());
}

TEST_F(TextTabUi, FailedImportsLeaveTheDocument) {
  Document doc;
  doc.score.noteMut(0, 0, 0, 2).Fret = "7";
  const Score before = doc.score;
  ScriptedPrompter prompter;
  EditContext edit(doc, prompter);
  const Messages english;
  edit.hooks.text = [&](std::string_view key) { return english.str(key); };

  QApplication::clipboard()->setText("no tab here, just words\n");
  AsciiImportDialog clip(nullptr, edit, TabSource::Clipboard);
  EXPECT_EQ(clip.text()->toPlainText(), "no tab here, just words\n");
  prompter.push(true);
  clip.accept();
  EXPECT_EQ(doc.score, before);
  ASSERT_FALSE(prompter.asked().empty());
  EXPECT_EQ(prompter.asked().back().kind, "message");
  EXPECT_NE(prompter.asked().back().text.find("The tab could not be imported."), std::string::npos);

  // An invalid time signature is refused before anything is asked or changed.
  prompter.clear();
  clip.text()->setPlainText("--1--\n--1--\n--1--\n");
  clip.findChild<QCheckBox*>("chkEnforceTiming")->setChecked(true);
  clip.findChild<QLineEdit*>("txtTiming")->setText("5:5");
  clip.accept();
  ASSERT_EQ(prompter.asked().size(), 1u);
  EXPECT_EQ(prompter.asked()[0].text, "Please enter a valid time signature.");
  EXPECT_EQ(doc.score, before);

  // Saying No to replacing the track changes nothing either.
  prompter.clear();
  clip.findChild<QLineEdit*>("txtTiming")->setText("3:4");
  prompter.push(false);
  clip.accept();
  EXPECT_EQ(doc.score, before);
}

}  // namespace
}  // namespace plectaro
