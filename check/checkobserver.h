#ifndef CHECK_CHECKOBSERVER_H
#define CHECK_CHECKOBSERVER_H

struct CheckContext;

// Follows a check, for what is to be known of a file beside its findings. The context is that of
// the check, and lives as long as it.
class CheckObserver
{
public:
    virtual ~CheckObserver() = default;

    // A run or a slot that was read, after all topics have looked at it.
    virtual void runRead(const CheckContext& context) = 0;
    virtual void slotRead(const CheckContext& context) = 0;
    // After the last section that could be read, with all findings.
    virtual void finished(const CheckContext&) {}
};

#endif // CHECK_CHECKOBSERVER_H
