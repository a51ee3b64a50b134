// The Prompter answered by Qt dialogs, over a parent window.
#pragma once

#include <QPointer>
#include <QWidget>

#include "shell/language.h"
#include "score/prompter.h"

namespace plectaro {

class QtPrompter : public Prompter {
 public:
  QtPrompter() = default;
  // The texts of the password window's buttons; English until set.
  void setMessages(const Messages* messages) { messages_ = messages; }
  void setParent(QWidget* parent) { parent_ = parent; }

  void message(std::string_view text, std::string_view title, MessageIcon icon) override;
  Answer yesNoCancel(std::string_view text, std::string_view title) override;
  bool yesNo(std::string_view text, std::string_view title) override;
  std::optional<std::string> textInput(std::string_view prompt, std::string_view title,
                                       bool secret) override;
  std::optional<std::string> openFileName(std::string_view title, std::string_view filter,
                                          std::string_view folder) override;
  std::optional<std::string> saveFileName(std::string_view title, std::string_view filter,
                                          std::string_view suggested) override;

 private:
  const Messages* messages_ = nullptr;
  QPointer<QWidget> parent_;
};

// "Name|*.a|Other|*.b|" -> "Name (*.a);;Other (*.b)"
QString QtFileFilter(std::string_view filter);

}  // namespace plectaro
