// The questions the program asks the user: message boxes, yes/no(/cancel), a line of text, and
// the choice of a file. The GUI answers them with dialogs; tests answer them from a script and
// can read back what was asked.
#pragma once

#include <deque>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace plectaro {

enum class MessageIcon { Information, Warning, Critical, Question };
enum class Answer { Yes, No, Cancel };

class Prompter {
 public:
  virtual ~Prompter() = default;

  virtual void message(std::string_view text, std::string_view title, MessageIcon icon) = 0;
  virtual Answer yesNoCancel(std::string_view text, std::string_view title) = 0;
  virtual bool yesNo(std::string_view text, std::string_view title) = 0;
  // nullopt when cancelled. `secret` hides what is typed (passwords).
  virtual std::optional<std::string> textInput(std::string_view prompt, std::string_view title,
                                               bool secret) = 0;
  // `filter` is "Name|*.a|Other|*.b|": pairs of a name and patterns. nullopt when cancelled.
  // A save choice does not ask about an existing file; the caller asks.
  virtual std::optional<std::string> openFileName(std::string_view title, std::string_view filter,
                                                  std::string_view folder) = 0;
  virtual std::optional<std::string> saveFileName(std::string_view title, std::string_view filter,
                                                  std::string_view suggested) = 0;
};

// Answers from a queue filled by the test; records every question. A question with no answer
// left in the queue fails the test loudly instead of hanging.
class ScriptedPrompter : public Prompter {
 public:
  struct Asked {
    std::string kind;  // "message", "yesNoCancel", "yesNo", "text", "open", "save"
    std::string text;
    std::string title;
  };
  using Reply = std::variant<Answer, bool, std::optional<std::string>>;

  void push(Reply r) { replies_.push_back(std::move(r)); }
  void pushText(std::optional<std::string> t) { replies_.push_back(std::move(t)); }
  const std::vector<Asked>& asked() const { return asked_; }
  void clear() { asked_.clear(); }
  size_t pending() const { return replies_.size(); }

  void message(std::string_view text, std::string_view title, MessageIcon) override {
    asked_.push_back({"message", std::string(text), std::string(title)});
  }
  Answer yesNoCancel(std::string_view text, std::string_view title) override {
    asked_.push_back({"yesNoCancel", std::string(text), std::string(title)});
    return take<Answer>();
  }
  bool yesNo(std::string_view text, std::string_view title) override {
    asked_.push_back({"yesNo", std::string(text), std::string(title)});
    return take<bool>();
  }
  std::optional<std::string> textInput(std::string_view prompt, std::string_view title,
                                       bool) override {
    asked_.push_back({"text", std::string(prompt), std::string(title)});
    return take<std::optional<std::string>>();
  }
  std::optional<std::string> openFileName(std::string_view title, std::string_view filter,
                                          std::string_view) override {
    asked_.push_back({"open", std::string(filter), std::string(title)});
    return take<std::optional<std::string>>();
  }
  std::optional<std::string> saveFileName(std::string_view title, std::string_view filter,
                                          std::string_view) override {
    asked_.push_back({"save", std::string(filter), std::string(title)});
    return take<std::optional<std::string>>();
  }

 private:
  template <class T>
  T take() {
    if (replies_.empty()) throw std::logic_error("unexpected question: " + asked_.back().text);
    Reply r = std::move(replies_.front());
    replies_.pop_front();
    if (!std::holds_alternative<T>(r))
      throw std::logic_error("scripted reply of the wrong kind for: " + asked_.back().text);
    return std::get<T>(std::move(r));
  }

  std::deque<Reply> replies_;
  std::vector<Asked> asked_;
};

}  // namespace plectaro
