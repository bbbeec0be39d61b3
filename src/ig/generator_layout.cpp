#include "ig/generator_layout.h"

#include <algorithm>

#include "resources/resource_ids.h"

namespace NIg {
namespace {

using NCommon::Area;

constexpr int kButtonsInRow = 3;

Area Box(int left, int top, int width, int height) {
  return {left, top, left + std::max(width, 0), top + std::max(height, 0)};
}

// A list with its label above it and its button below; 0 stands for none.
struct ListPart {
  int label;
  int list;
  int button;
};
constexpr ListPart kSequencePart = {IDC_IG_SEQUENCE_LABEL, IDC_IG_SEQUENCE, IDC_IG_EXECUTE};
constexpr ListPart kCyclicPart = {IDC_IG_CYCLIC_LABEL, IDC_IG_CYCLIC, IDC_IG_START};

class Arrangement {
 public:
  Arrangement(int width, int height, const LayoutMetrics& metrics, const NCommon::SplitPosition& tree,
              const NCommon::SplitPosition& lists)
      : mWidth(width), mHeight(height), m(metrics), mTree(tree), mLists(lists) {}

  GeneratorLayout Make() {
    const int rowOfButtons = kButtonsInRow * m.buttonWidth + (kButtonsInRow - 1) * m.gap;
    const int part = m.label + m.leastList + m.gap + m.button;
    const int least = 2 * part + m.bar + m.margin + m.button + 2 * m.margin;
    const bool roomy = mWidth >= 2 * m.margin + m.leastTree + m.bar + rowOfButtons && mHeight >= least;
    return roomy ? MakeRoomy(rowOfButtons) : MakeCompact();
  }

 private:
  GeneratorLayout MakeRoomy(int rowOfButtons) {
    const int bottom = mHeight - m.margin - m.button;
    const Area panes = {m.margin, m.margin, mWidth - m.margin, bottom - m.margin};
    Panes(panes, m.leastTree, rowOfButtons, /*labels=*/true, /*buttons=*/true);
    Place(IDC_IG_REFRESH, Box(m.margin, bottom, std::min(m.buttonWidth, mTreeWidth), m.button));
    Row({IDC_IG_CONFIGURE, IDC_IG_OPEN, IDC_IG_SAVE}, mWidth - m.margin - rowOfButtons, bottom, m.buttonWidth,
        m.gap);
    return std::move(mLayout);
  }

  GeneratorLayout MakeCompact() {
    const int margin = m.gap / 2;
    const int inside = mWidth - 2 * margin;
    const int button = std::min(m.buttonWidth, (inside - (kButtonsInRow - 1) * margin) / kButtonsInRow);
    const int second = mHeight - margin - m.button;
    const int first = second - margin - m.button;
    const Area panes = {margin, margin, margin + std::max(inside, 0), first - margin};
    const bool labels = panes.Height() - m.bar >= 2 * (m.label + m.leastList);
    Panes(panes, m.leastTree / 2, m.leastTree, labels, /*buttons=*/false);
    Row({IDC_IG_REFRESH, IDC_IG_EXECUTE, IDC_IG_START}, margin, first, button, margin);
    Row({IDC_IG_CONFIGURE, IDC_IG_OPEN, IDC_IG_SAVE}, margin, second, button, margin);
    return std::move(mLayout);
  }

  // The tree on the left, the lists on the right, and the bars between them.
  void Panes(const Area& area, int leastTree, int leastLists, bool labels, bool buttons) {
    mLayout.across = {area.left, area.Width() - m.bar};
    mTreeWidth = mTree.At(mLayout.across.length, leastTree, leastLists);
    const int label = labels ? m.label : 0;
    Place(IDC_IG_TEMPLATES_LABEL, Box(area.left, area.top, mTreeWidth, label));
    Place(IDC_IG_TEMPLATES, Box(area.left, area.top + label, mTreeWidth, area.Height() - label));
    Place(IDC_IG_SPLIT_TREE, Box(area.left + mTreeWidth, area.top, m.bar, area.Height()));

    const Area lists = {std::min(area.left + mTreeWidth + m.bar, area.right), area.top, area.right,
                        area.bottom};
    mLayout.down = {lists.top, lists.Height() - m.bar};
    const int leastPart = label + (buttons ? m.leastList + m.gap + m.button : m.leastList);
    const int upper = mLists.At(mLayout.down.length, leastPart, leastPart);
    Part(kSequencePart, Box(lists.left, lists.top, lists.Width(), upper), label, buttons);
    Place(IDC_IG_SPLIT_LISTS, Box(lists.left, lists.top + upper, lists.Width(), m.bar));
    Part(kCyclicPart, Box(lists.left, lists.top + upper + m.bar, lists.Width(), mLayout.down.length - upper),
         label, buttons);
  }

  void Part(const ListPart& part, const Area& area, int label, bool button) {
    const int below = button ? m.gap + m.button : 0;
    Place(part.label, Box(area.left, area.top, area.Width(), std::min(label, area.Height())));
    Place(part.list, Box(area.left, area.top + label, area.Width(), area.Height() - label - below));
    if (button)
      Row({part.button}, area.left, area.bottom - m.button, std::min(m.buttonWidth, area.Width()), 0);
  }

  void Row(std::initializer_list<int> buttons, int left, int top, int width, int gap) {
    for (const int button : buttons) {
      Place(button, Box(left, top, width, m.button));
      left += width + gap;
    }
  }

  void Place(int id, const Area& area) { mLayout.controls.push_back({id, area}); }

  const int mWidth;
  const int mHeight;
  const LayoutMetrics& m;
  const NCommon::SplitPosition& mTree;
  const NCommon::SplitPosition& mLists;
  int mTreeWidth = 0;
  GeneratorLayout mLayout;
};

}  // namespace

GeneratorLayout LayOut(int width, int height, const LayoutMetrics& metrics,
                       const NCommon::SplitPosition& tree, const NCommon::SplitPosition& lists) {
  return Arrangement(width, height, metrics, tree, lists).Make();
}

}  // namespace NIg
