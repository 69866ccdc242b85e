// Progress of long imaging operations through the DrawContext's callback.
//
// A ProgressScope lets an operation that runs several walks one after the
// other report them as one: it installs its own callback in the context,
// which maps the inner walk's (done, total) into the scope's current step.
// Scopes nest. A walk reports about twenty times over its work, fewer inside
// a scope whose step is a small part of its total.
#pragma once

#include <cstdint>

#include "imaging/draw_context.h"

namespace fancy {

struct ProgressScope {
  DrawContext* context;
  ProgressFn savedProgress;
  void* savedData;
  int64_t done;   // times 128
  int64_t step;   // times 128
  int64_t total;  // times 128
};

// Opens a scope on the context (nothing happens for a null context or one
// without a callback) whose first step is `firstStep` of `total`.
void ProgressScopeOpen(ProgressScope* scope, DrawContext* context, int32_t firstStep,
                       int32_t total);
// Adds the current step to what is done and takes `nextStep` as the next.
void ProgressScopeNext(ProgressScope* scope, int32_t nextStep);
// Takes the rest of the total as the last step.
void ProgressScopeFinish(ProgressScope* scope);
// Puts the saved callback back.
void ProgressScopeClose(ProgressScope* scope);

// How many reports a walk makes under the context's callback: 20 under a
// plain callback, the parent's share under a scope (at least 1), 0 without
// a callback.
int32_t ProgressIntervals(const DrawContext* context);

// Reports of one walk over `total` units in ProgressIntervals pieces; the
// first piece takes the remainder of the division, so that the last report
// is (total, total).
struct ProgressTicker {
  DrawContext* context;
  int64_t total;
  int64_t piece;
  int64_t next;  // the count of units at which the next report is due
};

void ProgressTickerStart(ProgressTicker* ticker, DrawContext* context, int64_t total);
// Tells that `done` units are done; reports each interval passed. Answers 0
// when the callback asked to stop.
int ProgressTickerAdvance(ProgressTicker* ticker, int64_t done);

}  // namespace fancy
