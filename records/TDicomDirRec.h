#pragma once

#include "dicom/TIODSource.h"
#include "records/TListOf.h"

namespace Vantor {

// A directory record while a tree is put together: the document or file that it stands for, which it counts,
// and the records that it points to.
class TDicomDirRec final : public TIODSource {
  public:
    // `source` may be null.
    explicit TDicomDirRec(TIODSource* source);
    ~TDicomDirRec() override;

    TIODSource* GetSource() const { return fSource; }

    // The record behind this one on its level, and the first of the level below; null when there is none. Not
    // counted.
    TDicomDirRec* GetNext() const { return fNext; }
    void SetNext(TDicomDirRec* next) { fNext = next; }
    TDicomDirRec* GetLower() const { return fLower; }
    void SetLower(TDicomDirRec* lower) { fLower = lower; }

    // Appends the sources of this record and those behind it, up to the first record without one. A chain
    // that leads back into itself ends where it would start again.
    void CollectSources(TListOf<TIODSource>& list) const;

  private:
    TDicomDirRec* fNext = nullptr;
    TDicomDirRec* fLower = nullptr;
    TIODSource* fSource;
};

}  // namespace Vantor
