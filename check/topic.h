#ifndef CHECK_TOPIC_H
#define CHECK_TOPIC_H

#include <memory>
#include <vector>

#include "check/checkcontext.h"
#include "check/finding.h"
#include "hts/htsreader.h"

// The check of one topic. It sees each section after the conversion has taken it. All functions do
// nothing unless they are overridden.
class TopicCheck
{
public:
    explicit TopicCheck(CheckContext& context) : m_context(context) {}
    virtual ~TopicCheck() = default;

    // What sees each line, if the check has to; else null, which saves a call for each.
    virtual HtsReader::Observer* lineObserver() { return nullptr; }

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
class LineCheck : public TopicCheck, public HtsReader::Observer
{
public:
    using TopicCheck::TopicCheck;
    HtsReader::Observer* lineObserver() final { return this; }
};

// One topic: a file of check/, which has the kinds of its findings and the functions that find
// them.
struct Topic
{
    const char* title;
    // In the order in which people read them.
    std::vector<const FindingKind*> kinds;
    std::unique_ptr<TopicCheck> (*makeCheck)(CheckContext& context);
};

template<typename Check>
std::unique_ptr<TopicCheck> makeCheck(CheckContext& context)
{
    return std::make_unique<Check>(context);
}

const Topic& fileKindTopic();
const Topic& readingTopic();
const Topic& packageTopic();
const Topic& preambleTopic();
const Topic& slotTopic();
const Topic& valueTopic();
const Topic& tableTopic();
const Topic& timestepTopic();
const Topic& runTopic();
const Topic& repeatTopic();
const Topic& controlTopic();
const Topic& ruleTopic();
const Topic& methodTopic();
const Topic& annualValueTopic();

// All topics, in the order in which people read them, and in which their checks are called.
const std::vector<const Topic*>& findingTopics();

#endif // CHECK_TOPIC_H
