#pragma once

#include <algorithm>
#include <limits>

#include "core/observable.h"

// The ageing of a published table of reports (PRNs, satellites): an entry goes once it has gone
// unreported for longer than the valid period. It remembers the oldest report still in the table,
// so that while nothing can have expired the table is not walked.
class report_ageing_t {
public:
  explicit report_ageing_t(double valid_period_s) : valid_period_s_(valid_period_s) {}

  // Removes every entry reported before now minus the valid period, one change notice each.
  // report_time(entry) gives an entry's report time.
  template <class Table, class ReportTime>
  void expire(published_t<Table>& table, double now, ReportTime report_time) {
    const double limit = now - valid_period_s_;
    if (!(oldest_ < limit)) return;
    double oldest = std::numeric_limits<double>::infinity();
    for (auto it = table->begin(); it != table->end();) {
      const auto key = it->first;
      const double time = report_time(it->second);
      ++it;
      if (time < limit) {
        table.modify([key](Table& t) { t.erase(key); });
      } else {
        oldest = std::min(oldest, time);
      }
    }
    oldest_ = oldest;
  }

  // An entry was reported at this time.
  void reported(double time) { oldest_ = std::min(oldest_, time); }
  // The table was emptied.
  void clear() { oldest_ = std::numeric_limits<double>::infinity(); }

private:
  double valid_period_s_;
  double oldest_ = std::numeric_limits<double>::infinity();  // no entry was reported before this
};
