#ifndef CHECK_METHODHINT_H
#define CHECK_METHODHINT_H

#include <QString>

// What may be meant by the text after the colon of a rule that is not a method: "; is Average
// meant?", or nothing; with the list also which methods there are.
QString methodHint(const QString& text, bool hasList);

#endif // CHECK_METHODHINT_H
