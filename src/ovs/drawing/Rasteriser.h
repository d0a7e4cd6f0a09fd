// From lines to how much of each pixel they enclose. Wraps the cells of AGG, which hold for coordinates near the
// surface: everything is clipped in doubles first.
#pragma once

#include "drawing/Geometry.h"
#include "drawing/Paint.h"

#include <agg_rasterizer_cells_aa.h>
#include <agg_rasterizer_scanline_aa_nogamma.h>
#include <agg_rasterizer_sl_clip.h>

#include <array>
#include <cstdint>
#include <memory>

namespace Drawing {

using CoverageTable = std::array<std::uint8_t, 256>;

class Rasteriser {
public:
    // Begins a shape of which only what is inside `clip` will be seen.
    void begin(const IntRect& clip) {
        clip_ = clip;
        if (cells_ && !full()) {
            cells_->reset();
        } else {
            cells_ = std::make_unique<Cells>(kMostBlocks); // one that ever was full stays so
        }
        clipper_.clip_box(clip.x, clip.y, clip.x + clip.width, clip.y + clip.height);
        open_ = false;
    }

    void moveTo(Point p) {
        close();
        start_ = held(p);
        clipper_.move_to(start_.x, start_.y);
    }
    void lineTo(Point p) {
        Splitter splitter{*cells_};
        const Point to = held(p);
        clipper_.line_to(splitter, to.x, to.y);
        open_ = true;
    }
    void close() {
        if (open_) {
            Splitter splitter{*cells_};
            clipper_.line_to(splitter, start_.x, start_.y);
            open_ = false;
        }
    }

    // Too much for the memory that a shape may take: what sweep() would show is not the shape.
    bool full() const { return cells_->total_cells() >= kMostBlocks * kCellsInBlock; }

    std::uint64_t edgePixels() const { return cells_->total_cells(); }
    std::uint64_t sweptPixels() const { return swept_; } // between edges, in the last sweep

    // Calls blend.row(y), then blend.cell(x, coverage) and blend.span(x, length, coverage) from left to right,
    // all inside the clip.
    template <class Blend>
    void sweep(FillRule rule, const CoverageTable& table, Blend& blend) {
        close();
        swept_ = 0;
        cells_->sort_cells();
        if (cells_->total_cells() == 0) {
            return;
        }
        const int bottom = std::min(cells_->max_y(), clip_.y + clip_.height - 1);
        for (int y = std::max(cells_->min_y(), clip_.y); y <= bottom; ++y) {
            const auto row = static_cast<unsigned>(y);
            if (const unsigned count = cells_->scanline_num_cells(row)) {
                blend.row(y);
                if (rule == FillRule::nonZero) {
                    sweepRow<FillRule::nonZero>(cells_->scanline_cells(row), count, table, blend);
                } else {
                    sweepRow<FillRule::evenOdd>(cells_->scanline_cells(row), count, table, blend);
                }
            }
        }
    }

private:
    using Cells = agg::rasterizer_cells_aa<agg::cell_aa>;
    using Cell = agg::cell_aa;

    static constexpr unsigned kMostBlocks = 1024;
    static constexpr unsigned kCellsInBlock = 4096;
    // Far outside any surface, and still near enough for a line from there to be clipped to the pixel. A point
    // beyond is moved, and the lines to it turn.
    static constexpr double kFarthest = 1e12;
    static constexpr int kFull = 255;
    // Twice the area of a pixel in its 256 x 256 parts, down to 0..256.
    static constexpr int kAreaShift = 9;

    // The cells draw a line of more than 16384 pixels twice.
    struct Splitter {
        Cells& cells;
        static constexpr long long kLongest = 16383 << 8;

        void line(int x1, int y1, int x2, int y2) {
            const long long dx = static_cast<long long>(x2) - x1;
            if (dx > kLongest || dx < -kLongest) {
                const int mx = static_cast<int>((static_cast<long long>(x1) + x2) / 2);
                const int my = static_cast<int>((static_cast<long long>(y1) + y2) / 2);
                line(x1, y1, mx, my);
                line(mx, my, x2, y2);
                return;
            }
            cells.line(x1, y1, x2, y2);
        }
    };

    static Point held(Point p) {
        // Also brings in what is not a number.
        return {std::max(-kFarthest, std::min(kFarthest, p.x)), std::max(-kFarthest, std::min(kFarthest, p.y))};
    }

    template <FillRule rule>
    static unsigned coverage(int area, const CoverageTable& table) {
        int cover = std::abs(area >> kAreaShift);
        if constexpr (rule == FillRule::evenOdd) {
            cover &= 511;
            cover = cover > 256 ? 512 - cover : cover;
        }
        return table[static_cast<std::size_t>(std::min(cover, kFull))];
    }

    template <FillRule rule, class Blend>
    void sweepRow(const Cell* const* cells, unsigned count, const CoverageTable& table, Blend& blend) {
        const int right = clip_.x + clip_.width;
        const Cell* const* const end = cells + count;
        int cover = 0;
        while (cells != end) {
            int x = (*cells)->x;
            if (x >= right) { // lines that were moved to the edge from beyond
                return;
            }
            int area = 0;
            do {
                area += (*cells)->area;
                cover += (*cells)->cover;
                ++cells;
            } while (cells != end && (*cells)->x == x);
            if (area != 0) {
                if (const unsigned shown = coverage<rule>(cover * 512 - area, table)) {
                    blend.cell(x, shown);
                }
                ++x;
            }
            if (cells != end && cover != 0) {
                const int next = std::min((*cells)->x, right);
                if (next > x) {
                    if (const unsigned shown = coverage<rule>(cover * 512, table)) {
                        blend.span(x, next - x, shown);
                        swept_ += static_cast<unsigned>(next - x);
                    }
                }
            }
        }
    }

    std::unique_ptr<Cells> cells_;
    agg::rasterizer_sl_clip<agg::ras_conv_dbl> clipper_;
    IntRect clip_;
    Point start_;
    bool open_ = false;
    std::uint64_t swept_ = 0;
};

} // namespace Drawing
