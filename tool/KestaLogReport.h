#ifndef KESTA_LOG_REPORT_H
#define KESTA_LOG_REPORT_H

struct CKestaLogFacts;
struct CKestaLogVerdict;
class CKestaOutput;

/// Writes what kesta log --check has found, as a table with the verdict below it.
void printReport(const CKestaLogFacts& facts, const CKestaLogVerdict& verdict,
                 CKestaOutput& output);

/// The same as JSON.
void printReportAsJson(const CKestaLogFacts& facts, const CKestaLogVerdict& verdict,
                       CKestaOutput& output);

#endif
