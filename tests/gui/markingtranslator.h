#ifndef TESTS_GUI_MARKINGTRANSLATOR_H
#define TESTS_GUI_MARKINGTRANSLATOR_H

#include <QCoreApplication>
#include <QTranslator>

// Translates every text into its context and itself, until it is destroyed.
class MarkingTranslator : public QTranslator
{
public:
    MarkingTranslator() { QCoreApplication::installTranslator(this); }
    ~MarkingTranslator() override { QCoreApplication::removeTranslator(this); }
    MarkingTranslator(const MarkingTranslator&) = delete;
    MarkingTranslator& operator=(const MarkingTranslator&) = delete;

    QString translate(const char* context, const char* text, const char*, int) const override
    {
        return QStringLiteral("<%1|%2>").arg(QLatin1String(context), QLatin1String(text));
    }
    bool isEmpty() const override { return false; }
};

#endif // TESTS_GUI_MARKINGTRANSLATOR_H
