#ifndef CHECK_TOPICCHECK_H
#define CHECK_TOPICCHECK_H

#include <memory>

#include "check/checkcontext.h"
#include "check/finding.h"
#include "check/topic.h"
#include "hts/readerobserver.h"

// The check of one topic. It sees each section after the conversion has taken it. All functions do
// nothing unless they are overridden.
class TopicCheck
{
public:
    explicit TopicCheck(CheckContext& context) : m_context(context) {}
    virtual ~TopicCheck() = default;

    // What sees each line, if the check has to; else null, which saves a call for each.
    virtual ReaderObserver* lineObserver() { return nullptr; }

    // A slot whose values have not been read yet; not for tables.
    virtual void beforeValues() {}
    // The run, the slot or the end of a run at which the walk is.
    virtual void runRead() {}
    virtual void slotRead() {}
    virtual void runEnded() {}
    // After the walk, however it ended.
    virtual void finish() {}

protected:
    template<typename Text, typename... Arguments>
    void add(const FindingKind& kind, qint64 line, const Text& text,
             const Arguments&... arguments) const
    {
        m_context.findings.add(kind, line, text, arguments...);
    }

    CheckContext& m_context;
};

// A check that sees each line too, as the reader reports it.
class LineCheck : public TopicCheck, public ReaderObserver
{
public:
    using TopicCheck::TopicCheck;
    ReaderObserver* lineObserver() final { return this; }
};

// For Topic::makeCheck.
template<typename Check>
std::unique_ptr<TopicCheck> makeCheck(CheckContext& context)
{
    return std::make_unique<Check>(context);
}

#endif // CHECK_TOPICCHECK_H
