#pragma once

#include <array>
#include <cstddef>

#include "records/TDicomDoc.h"
#include "records/TDocList.h"

namespace Vantor {

// A document that has others below it. Its class says in which lists; the operations are the same for all.
class TParentDoc : public TDicomDoc {
  public:
    TDicomDoc* CopyToDirectory(TRecordDirectory* directory, TDicomDoc* parent, bool deep,
                               int32_t& error) override;
    void GetChildDocs(TListOf<TDicomDoc>& list, bool directOnly) override;
    bool CanAddChild(TDicomDoc* child, int32_t reserved, int32_t& error) override;
    bool AddChild(TDicomDoc* child, TDicomDoc* before, bool keepSource, int32_t& error) override;
    void RemoveChild(TDicomDoc* child) override;

  protected:
    using TDicomDoc::TDicomDoc;

    // The lists of children, in the order in which GetChildDocs goes through them.
    static constexpr size_t kMostChildLists = 4;
    using ChildLists = std::array<TDocListBase*, kMostChildLists>;  // null behind the last
    virtual ChildLists GetChildLists() = 0;

  private:
    TDocListBase* FindListFor(const TDicomDoc* child);
    bool Insert(TDicomDoc* child, const TDicomDoc* before);
};

}  // namespace Vantor
