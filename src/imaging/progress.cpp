#include "imaging/progress.h"

#include <algorithm>

namespace fancy {

namespace {

constexpr int32_t kPlainIntervals = 20;
constexpr int64_t kScale = 128;

int32_t Clamp32(int64_t v) { return static_cast<int32_t>(std::clamp<int64_t>(v, 0, INT32_MAX)); }

int ScopeCallback(int32_t done, int32_t total, void* data) {
  auto* scope = static_cast<ProgressScope*>(data);
  if (!scope->savedProgress) return 1;
  int64_t at = scope->done;
  if (total > 0) at += scope->step * std::clamp(done, 0, total) / total;
  return scope->savedProgress(Clamp32(at), Clamp32(scope->total), scope->savedData);
}

int32_t IntervalsOf(ProgressFn progress, void* data) {
  if (!progress) return 0;
  if (progress != &ScopeCallback) return kPlainIntervals;
  const auto* scope = static_cast<const ProgressScope*>(data);
  int64_t parent = IntervalsOf(scope->savedProgress, scope->savedData);
  if (parent == 0) return 0;
  int64_t share = scope->total > 0 ? parent * scope->step / scope->total : parent;
  return static_cast<int32_t>(std::max<int64_t>(1, share));
}

}  // namespace

void ProgressScopeOpen(ProgressScope* scope, DrawContext* context, int32_t firstStep,
                       int32_t total) {
  *scope = ProgressScope{};
  if (!context || !context->progress) return;
  scope->context = context;
  scope->savedProgress = context->progress;
  scope->savedData = context->progressData;
  scope->total = std::max<int64_t>(1, total) * kScale;
  scope->step = std::clamp<int64_t>(int64_t{firstStep} * kScale, 0, scope->total);
  context->progress = &ScopeCallback;
  context->progressData = scope;
}

void ProgressScopeNext(ProgressScope* scope, int32_t nextStep) {
  if (!scope->context) return;
  scope->done = std::min(scope->total, scope->done + scope->step);
  scope->step = std::clamp<int64_t>(int64_t{nextStep} * kScale, 0, scope->total - scope->done);
}

void ProgressScopeFinish(ProgressScope* scope) {
  if (!scope->context) return;
  scope->done = std::min(scope->total, scope->done + scope->step);
  scope->step = scope->total - scope->done;
}

void ProgressScopeClose(ProgressScope* scope) {
  if (!scope->context) return;
  scope->context->progress = scope->savedProgress;
  scope->context->progressData = scope->savedData;
  scope->context = nullptr;
}

int32_t ProgressIntervals(const DrawContext* context) {
  if (!context) return 0;
  return IntervalsOf(context->progress, context->progressData);
}

void ProgressTickerStart(ProgressTicker* t, DrawContext* context, int64_t total) {
  *t = ProgressTicker{};
  int32_t intervals = ProgressIntervals(context);
  if (intervals <= 0 || total <= 0) return;
  t->context = context;
  t->total = total;
  if (intervals > total) intervals = static_cast<int32_t>(total);
  t->piece = total / intervals;
  t->next = t->piece + total % intervals;
}

int ProgressTickerAdvance(ProgressTicker* t, int64_t done) {
  if (!t->context) return 1;
  while (t->next <= t->total && done >= t->next) {
    int32_t at = Clamp32(t->next), total = Clamp32(t->total);
    t->next += t->piece;
    if (!t->context->progress(at, total, t->context->progressData)) return 0;
  }
  return 1;
}

}  // namespace fancy
