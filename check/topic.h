#ifndef CHECK_TOPIC_H
#define CHECK_TOPIC_H

#include <memory>
#include <vector>

#include "check/finding.h"

struct CheckContext;
class TopicCheck;

// One topic: a file of check/, which has the kinds of its findings and the functions that find
// them.
struct Topic
{
    const char* title;
    // In the order in which people read them.
    std::vector<const FindingKind*> kinds;
    std::unique_ptr<TopicCheck> (*makeCheck)(CheckContext& context);
};

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
