// How the core talks to the user without knowing who answers: the desktop
// program shows dialogs, the command line takes options, tests script the
// replies. Every long loop calls idle() so that the user can cancel.
#pragma once

#include <deque>
#include <string>
#include <vector>

namespace tramline {

/// One field of a small form: a caption, the current text (edited in
/// place), and, for a choice, the allowed values.
struct FormField {
    std::string caption;
    std::string value;
    std::vector<std::string> choices;
};

/// Sets the fields' values from one text of values separated by '|', in
/// field order; fields past the last value keep theirs. The scripted and
/// command-line answers use this form.
void fillFieldsFrom(const std::string &answer, std::vector<FormField> &fields);

class Interaction {
public:
    virtual ~Interaction() = default;

    /// Asks a question with buttons ("Yes", "No", "Cancel", ...). Returns
    /// the index of the chosen button, or -1 when the user cancelled.
    virtual int choose(const std::string &title, const std::string &message,
                       const std::vector<std::string> &buttons) = 0;

    /// Shows a form to fill in. False when the user cancelled.
    virtual bool fillForm(const std::string &title, std::vector<FormField> &fields) = 0;

    /// Shows a message ("Error: ..." texts and notices).
    virtual void message(const std::string &text) = 0;

    /// Progress of long work: position out of length, with a caption.
    virtual void progress(long position, long length, const std::string &caption) = 0;

    /// Called often during long work; false means the user asked to stop.
    virtual bool idle() { return true; }
};

/// The question asked before each replacement when the user chose to
/// confirm them: "Search and Replace" with Yes, No and Cancel. Row and
/// column are 1-based, as the grid numbers them.
enum class ReplaceAnswer { Replace, Skip, Stop };
ReplaceAnswer askReplace(Interaction &ui, long row, long column);

/// Answers nothing: questions are cancelled, forms refused, messages kept.
/// For batch runs where no question is expected.
class SilentInteraction : public Interaction {
public:
    int choose(const std::string &, const std::string &,
               const std::vector<std::string> &) override {
        return -1;
    }
    bool fillForm(const std::string &, std::vector<FormField> &) override { return false; }
    void message(const std::string &text) override { messages.push_back(text); }
    void progress(long, long, const std::string &) override {}

    std::vector<std::string> messages;
};

/// Replies from a script, in order: for choose() the button text to press,
/// for fillForm() the field values separated by '|', "<cancel>" to cancel.
/// Records every question and message, so that tests can check them.
class ScriptedInteraction : public Interaction {
public:
    explicit ScriptedInteraction(std::deque<std::string> replies = {})
        : m_replies(std::move(replies)) {}

    void reply(std::string answer) { m_replies.push_back(std::move(answer)); }

    int choose(const std::string &title, const std::string &message,
               const std::vector<std::string> &buttons) override;
    bool fillForm(const std::string &title, std::vector<FormField> &fields) override;
    void message(const std::string &text) override { messages.push_back(text); }
    void progress(long position, long length, const std::string &caption) override;
    bool idle() override { return !cancelAfterIdles || --cancelAfterIdles > 0; }

    std::vector<std::string> questions; ///< "title: message" of every question
    std::vector<std::string> messages;
    long lastProgress = -1;
    int cancelAfterIdles = 0; ///< when set, idle() says stop on that call

private:
    std::deque<std::string> m_replies;
};

} // namespace tramline
