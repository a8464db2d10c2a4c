#pragma once

#include <cstdint>

#include "records/TDicomDoc.h"
#include "records/TListOf.h"

namespace Vantor {

// A list of documents of one type that counts its members, as its users see it who do not care for the type.
class TDocListBase {
  public:
    TDocListBase() = default;
    TDocListBase(const TDocListBase&) = delete;
    TDocListBase& operator=(const TDocListBase&) = delete;

    // What GetDocType gives for the members.
    virtual int32_t GetMemberType() const = 0;

    virtual bool Has(const TDicomDoc* doc) const = 0;

    // Inserts and counts a document of the type in front of `before`, or at the end when that is null or not
    // here.
    virtual void Insert(TDicomDoc* doc, const TDicomDoc* before) = 0;

    // Takes a document out and gives its count back; false when it is not here.
    virtual bool Remove(TDicomDoc* doc) = 0;

    virtual void AppendTo(TListOf<TDicomDoc>& list) const = 0;

  protected:
    ~TDocListBase() = default;
};

// The documents of a type that are below another one. They are destroyed with it, unless somebody holds them.
template <typename T>
class TDocList final : public TDocListBase {
  public:
    ~TDocList() {
        for (int32_t position = fDocs.GetCount(); position > 0; --position) {
            T* doc = nullptr;
            fDocs.FetchItemAt(position, doc);
            doc->Release();
            if (doc->IsInUse()) {
                doc->OutliveParent();
            } else {
                delete doc;
            }
        }
    }

    int32_t GetMemberType() const override { return T::kDocType; }

    bool Has(const TDicomDoc* doc) const override {
        return doc->GetDocType() == T::kDocType && fDocs.HasItem(static_cast<const T*>(doc));
    }

    void Insert(TDicomDoc* doc, const TDicomDoc* before) override {
        const int32_t position = before == nullptr ? 0 : fDocs.FindItem(static_cast<const T*>(before));
        fDocs.InsertItemAt(position == 0 ? TListOf<T>::kAtEnd : position, static_cast<T*>(doc));
        doc->Register();
    }

    bool Remove(TDicomDoc* doc) override {
        if (!Has(doc)) return false;
        fDocs.RemoveItem(static_cast<const T*>(doc));
        doc->Release();
        return true;
    }

    void AppendTo(TListOf<TDicomDoc>& list) const override {
        for (T* doc : fDocs) list.InsertItemAt(TListOf<TDicomDoc>::kAtEnd, doc);
    }

    TListOf<T>& GetDocs() { return fDocs; }
    const TListOf<T>& GetDocs() const { return fDocs; }

  private:
    TListOf<T> fDocs;
};

}  // namespace Vantor
