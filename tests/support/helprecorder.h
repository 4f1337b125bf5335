#ifndef TESTS_SUPPORT_HELPRECORDER_H
#define TESTS_SUPPORT_HELPRECORDER_H

#include <QByteArray>
#include <QString>

// While an object exists, a page that this process opens in the browser is not shown but recorded:
// on Unix by a separate xdg-open, where no browser is set up; on Windows by the program that opens
// "http", for which the user must have the right to change that. One object at a time.
class HelpRecorder
{
public:
    // Makes its files in `folder`.
    explicit HelpRecorder(const QString& folder);
    ~HelpRecorder();
    HelpRecorder(const HelpRecorder&) = delete;
    HelpRecorder& operator=(const HelpRecorder&) = delete;

    // Whether a page has been opened. That takes some time.
    bool hasOpened() const;
    // The number of the arguments that the browser got, "|", and the first of them.
    QByteArray opened() const;
    // The browser's command line after the program; only for Windows.
    QByteArray commandLine() const;

private:
    const QString m_folder;
    QByteArray m_before;
};

#endif // TESTS_SUPPORT_HELPRECORDER_H
