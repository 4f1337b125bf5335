#include "QsLogDest.h"

namespace QsLogging {

namespace {

class FunctorDestination : public Destination
{
public:
    explicit FunctorDestination(LogFunction function) : m_function(function) {}

    void write(const QString& message, Level level) override { m_function(message, level); }
    bool isValid() override { return m_function != nullptr; }

private:
    LogFunction m_function;
};

} // namespace

Destination::~Destination() = default;

DestinationPtr DestinationFactory::MakeFunctorDestination(Destination::LogFunction function)
{
    Q_ASSERT(function != nullptr);
    return DestinationPtr(new FunctorDestination(function));
}

} // namespace QsLogging
