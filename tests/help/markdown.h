#ifndef TESTS_HELP_MARKDOWN_H
#define TESTS_HELP_MARKDOWN_H

#include <QByteArray>
#include <QByteArrayList>
#include <QStringList>
#include <QVector>

// The parts of a Markdown document that tests compare with the programs.

// The code blocks, without their indentation and without a line end at the end. Blank lines between
// indented ones belong to the block.
QByteArrayList codeBlocks(const QByteArray& markdown);

// What a program printed as a document shows it: without blanks and carriage returns at line ends,
// and without line ends at the end.
QByteArray asShown(const QByteArray& text);

// The rows of the table after the line `header`, each as its cells without blanks at both ends.
QVector<QByteArrayList> tableRows(const QByteArray& markdown, const QByteArray& header);

// A cell without the backquotes around all of it.
QByteArray code(const QByteArray& cell);

// The texts in backquotes.
QStringList codes(const QByteArray& markdown);

#endif // TESTS_HELP_MARKDOWN_H
