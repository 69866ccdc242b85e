#include "imaging/region_walk.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "imaging/image_rows.h"
#include "imaging/progress.h"
#include "imaging/scratch.h"
#include "imaging/tile_walk.h"

namespace fancy {

namespace {

// Where one source stands in the current row: the stretch under x, of one
// kind, `left` pixels long; `bytes` are its coverage values for kind 2.
struct Cursor {
  const CoverageSource* source;
  bool byteForm;
  // run form
  const Run* runs;
  int32_t runCount;
  int32_t runIndex;
  TileCell* locked;
  uint8_t* constant;  // the walk's width of one value, for runs that carry it
  // byte form
  const uint8_t* row;
  int32_t pos;
  int32_t end;
  uint8_t* gather;  // the walk's width, for rows that are not in one plain cell
  // current stretch
  int32_t kind;
  int32_t left;
  const uint8_t* bytes;
  int32_t width;
};

uint16_t ClassOf(uint8_t v) { return v == 0 ? kRunClear : v == 255 ? kRunFull : kRunPartial; }

void Unlock(Cursor* c) {
  if (c->locked) {
    CellUnlock(c->locked);
    c->locked = nullptr;
  }
}

// Takes the next stretch of the row; false when a cell can't be locked.
bool Load(Cursor* c) {
  Unlock(c);
  c->bytes = nullptr;
  if (c->byteForm) {
    if (c->pos >= c->end) {
      c->kind = kRunClear;
      c->left = INT32_MAX;
      return true;
    }
    uint16_t kind = ClassOf(c->row[c->pos]);
    int32_t j = c->pos + 1;
    // Equal stretches are skipped four bytes at a time.
    if (kind != kRunPartial) {
      uint32_t want = kind == kRunFull ? 0xFFFFFFFFu : 0u;
      while (j + 4 <= c->end) {
        uint32_t w;
        std::memcpy(&w, c->row + j, 4);
        if (w != want) break;
        j += 4;
      }
    }
    while (j < c->end && ClassOf(c->row[j]) == kind) ++j;
    c->kind = kind;
    c->left = j - c->pos;
    c->bytes = c->row + c->pos;
    c->pos = j;
    return true;
  }
  while (c->runIndex < c->runCount && c->runs[c->runIndex].length == 0) ++c->runIndex;
  if (c->runIndex >= c->runCount) {
    c->kind = kRunClear;  // past the row's runs nothing applies
    c->left = INT32_MAX;
    return true;
  }
  const Run& run = c->runs[c->runIndex++];
  c->kind = run.kind > kRunPartial ? int32_t{kRunClear} : int32_t{run.kind};
  c->left = run.length;
  if (c->kind == kRunPartial) {
    if (run.cell) {
      if (run.cell->tile) {
        if (!CellLockRead(run.cell)) return false;
        c->locked = run.cell;
      }
      if (!run.cell->pixels) return false;
      c->bytes = run.cell->pixels + run.offset;
    } else {
      std::memset(c->constant, static_cast<uint8_t>(run.offset), static_cast<size_t>(c->width));
      c->bytes = c->constant;
    }
  }
  return true;
}

// Moves the cursor n pixels on.
bool Advance(Cursor* c, int32_t n) {
  while (n > 0) {
    int32_t step = std::min(n, c->left);
    if (c->left != INT32_MAX) c->left -= step;
    if (c->bytes) c->bytes += step;
    n -= step;
    if (c->left == 0 && !Load(c)) return false;
  }
  return true;
}

// Places the cursor at the start of the walk's row y, `skip` pixels into the
// source's own row.
bool StartRow(Cursor* c, int32_t y, int32_t skip) {
  Unlock(c);
  const CoverageSource* s = c->source;
  int32_t sy = y - s->rect.top;
  if (c->byteForm) {
    int32_t bit = 0;
    c->row = ImageRowPixels(s->image, sy, skip, c->width, c->gather, &bit);
    if (!c->row) return false;
    c->pos = 0;
    c->end = c->width;
    return Load(c);
  }
  const RunMask* runs = s->kind == kCoverageRuns ? s->runs : s->image->alphaRuns;
  const RunRow& row = runs->rows[sy];
  c->runs = row.runs;
  c->runCount = row.runs ? row.runCount : 0;
  c->runIndex = 0;
  if (!Load(c)) return false;
  return Advance(c, skip);
}

// Checks that the source reaches over the whole scan area and picks its form.
bool Prepare(Cursor* c, const Rect& rect) {
  const CoverageSource* s = c->source;
  int64_t needRight = int64_t{rect.right} - s->rect.left;
  int64_t needBottom = int64_t{rect.bottom} - s->rect.top;
  if (rect.left < s->rect.left || rect.top < s->rect.top) return false;
  if (s->kind == kCoverageRuns) {
    if (!s->runs || !s->runs->rows) return false;
    if (needRight >= s->runs->width || needBottom >= s->runs->height) return false;
    c->byteForm = false;
    return true;
  }
  Image* m = s->image;
  if (!m || !m->tiles || m->bitsPerPixel != 8) return false;
  if (needRight >= m->width || needBottom >= m->height) return false;
  // Alpha runs are used when their partial runs point into a plain cell.
  bool plain = m->tileRows == 1 && m->tileColumns == 1 && !m->tiles[0][0].tile;
  c->byteForm = !(m->alphaRuns && plain && m->alphaRuns->rows &&
                  m->alphaRuns->width == m->width && m->alphaRuns->height == m->height);
  return true;
}

int CallEnd(const SpanTable* table, int result) {
  if (table->end && !table->end(table->user)) return 0;
  return result;
}

}  // namespace

int RegionWalk(DrawContext* context, const SpanTable* table, const Rect& rect,
               const CoverageSource* sources, int32_t count) {
  if (!table || !table->span) return 0;
  count = std::clamp(count, 0, kRegionWalkSources);
  Rect area = rect;
  for (int32_t i = 0; i < count; ++i)
    if (!RectIntersect(area, sources[i].rect, &area)) return 1;
  if (RectIsEmpty(area)) return 1;
  const int32_t width = area.right - area.left + 1;
  const int64_t rows = int64_t{area.bottom} - area.top + 1;
  ProgressTicker ticker;
  ProgressTickerStart(&ticker, context, rows);
  Coverage coverage{nullptr, nullptr, DrawContextGetOpacity(context)};

  if (count == 0) {
    if (table->begin && !table->begin(table->user, area)) return 0;
    if (!table->lineEnd) {
      int ok = table->span(table->user, area.left, area.top, width, &coverage);
      if (ok) ok = ProgressTickerAdvance(&ticker, rows);
      return CallEnd(table, ok);
    }
    for (int64_t r = 0; r < rows; ++r) {
      int32_t y = static_cast<int32_t>(area.top + r);
      if (!table->span(table->user, area.left, y, width, &coverage) ||
          !table->lineEnd(table->user) || !ProgressTickerAdvance(&ticker, r + 1))
        return CallEnd(table, 0);
    }
    return CallEnd(table, 1);
  }

  // Run masks take the first slots, mask images the ones after.
  Cursor cursors[kRegionWalkSources] = {};
  ScratchArray<uint8_t> scratch;
  if (!scratch.Allocate(static_cast<size_t>(width) * 2 * count)) return 0;
  int32_t used = 0;
  for (int pass = 0; pass < 2; ++pass) {
    for (int32_t i = 0; i < count; ++i) {
      bool runs = sources[i].kind == kCoverageRuns;
      if (runs != (pass == 0)) continue;
      Cursor& c = cursors[used];
      c.source = &sources[i];
      c.width = width;
      c.constant = scratch.data() + static_cast<size_t>(width) * (2 * used);
      c.gather = c.constant + width;
      if (!Prepare(&c, area)) return 0;
      ++used;
    }
  }

  if (table->begin && !table->begin(table->user, area)) return 0;
  int result = 1;
  for (int64_t r = 0; r < rows && result; ++r) {
    int32_t y = static_cast<int32_t>(area.top + r);
    for (int32_t i = 0; i < used && result; ++i)
      if (!StartRow(&cursors[i], y, area.left - cursors[i].source->rect.left)) result = 0;
    int32_t x = area.left;
    while (result && x <= area.right) {
      int32_t n = area.right - x + 1;
      bool clear = false;
      const uint8_t* masks[2] = {nullptr, nullptr};
      int32_t partial = 0;
      for (int32_t i = 0; i < used; ++i) {
        const Cursor& c = cursors[i];
        n = std::min(n, c.left);
        if (c.kind == kRunClear) clear = true;
        else if (c.kind == kRunPartial && partial < 2) masks[partial++] = c.bytes;
      }
      if (!clear) {
        coverage.mask1 = masks[0];
        coverage.mask2 = masks[1];
        if (!table->span(table->user, x, y, n, &coverage)) result = 0;
      }
      for (int32_t i = 0; i < used && result; ++i)
        if (!Advance(&cursors[i], n)) result = 0;
      x += n;
    }
    if (result && table->lineEnd && !table->lineEnd(table->user)) result = 0;
    if (result && !ProgressTickerAdvance(&ticker, r + 1)) result = 0;
  }
  for (int32_t i = 0; i < used; ++i) Unlock(&cursors[i]);
  return CallEnd(table, result);
}

}  // namespace fancy
