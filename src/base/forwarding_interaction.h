// An interaction that adds one thing to another (a progress bar, progress
// lines for a controlling process) and passes everything else on: the
// questions and messages still reach whoever answers them.
#pragma once

#include "base/interaction.h"

namespace tramline {

class ForwardingInteraction : public Interaction {
public:
    explicit ForwardingInteraction(Interaction &inner) : m_inner(inner) {}

    int choose(const std::string &title, const std::string &message,
               const std::vector<std::string> &buttons) override {
        return m_inner.choose(title, message, buttons);
    }
    bool fillForm(const std::string &title, std::vector<FormField> &fields) override {
        return m_inner.fillForm(title, fields);
    }
    void message(const std::string &text) override { m_inner.message(text); }
    void progress(long position, long length, const std::string &caption) override {
        m_inner.progress(position, length, caption);
    }
    bool idle() override { return m_inner.idle(); }

private:
    Interaction &m_inner;
};

} // namespace tramline
