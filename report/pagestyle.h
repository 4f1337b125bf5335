#ifndef REPORT_PAGESTYLE_H
#define REPORT_PAGESTYLE_H

// The style sheet of all pages, page.css.
extern const char* const kPageStyle;

#endif // REPORT_PAGESTYLE_H
