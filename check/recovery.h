#ifndef CHECK_RECOVERY_H
#define CHECK_RECOVERY_H

#include <QtGlobal>

// After one lost line the reader misinterprets all that follow, up to a place where it is in sync
// with the file again. Of these consequences only the first is reported. This object knows how far
// the reader is from the file; its calls follow the order of the file:
//
//     for each run: runRead(), then noteSurplusStep() for timestep lines before the first slot
//     for each slot: slotPreambleRead(), then unless it is a table: beginValues(), for odd lines
//     noteForeignLine() or noteInsertedLine(), endValues()
class Recovery
{
public:
    // Whether the reader reads each line as what it is. What is found in lines is reported only
    // then.
    bool isInSync() const { return m_isInSync && m_surplusSteps == 0; }
    void loseSync() { m_isInSync = false; }
    // The end line of a slot preamble was read: the reader is in sync.
    void slotPreambleRead()
    {
        Q_ASSERT(!m_isInValues);
        m_isInSync = true;
    }

    void runRead() { m_surplusSteps = 0; }
    // A timestep follows those that the run announces. Its slots may have as many values too, and
    // the reader is out of sync up to a slot whose values are as many as announced.
    void noteSurplusStep() { ++m_surplusSteps; }
    qint64 surplusSteps() const { return m_surplusSteps; }
    void noteExactValues() { m_surplusSteps = 0; }

    void beginValues()
    {
        Q_ASSERT(!m_isInValues);
        m_isInValues = true;
        m_foreignLines = 0;
        m_insertedLines = 0;
    }
    // A line of another section, or past the end of the input, was read as a value: the slot has
    // too few.
    void noteForeignLine()
    {
        Q_ASSERT(m_isInValues);
        ++m_foreignLines;
    }
    bool hasForeignLines() const
    {
        Q_ASSERT(m_isInValues);
        return m_foreignLines > 0;
    }
    // A line that is not a value was read as one: the last values are not read.
    void noteInsertedLine()
    {
        Q_ASSERT(m_isInValues);
        ++m_insertedLines;
    }
    qint64 insertedLines() const
    {
        Q_ASSERT(m_isInValues);
        return m_insertedLines;
    }
    // The end lines after the values were read; `isEndOfSlot` is whether the second is the end of
    // the slot, or nearly.
    void endValues(bool isEndOfSlot)
    {
        if (hasForeignLines() || !isEndOfSlot)
            loseSync();
        m_isInValues = false;
    }

    // A run was ended by an empty line before its "END_RUN", which is still to be read.
    void expectStrayEndOfRun(bool isExpected) { m_isStrayExpected = isExpected; }
    // Whether that is expected. The following call returns false.
    bool takeStrayEndOfRun()
    {
        const bool isExpected = m_isStrayExpected;
        m_isStrayExpected = false;
        return isExpected;
    }

private:
    bool m_isInSync = true;
    bool m_isInValues = false;
    bool m_isStrayExpected = false;
    qint64 m_surplusSteps = 0;
    qint64 m_foreignLines = 0;
    qint64 m_insertedLines = 0;
};

#endif // CHECK_RECOVERY_H
