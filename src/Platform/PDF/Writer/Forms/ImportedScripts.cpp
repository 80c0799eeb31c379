#include "ImportedScripts.h"

#include "NameTree.h"
#include "PdfValues.h"

#include <algorithm>

ImportedScripts::Taken ImportedScripts::take(QPDF& file, const FieldScripts::Test& isForeign) {
    Taken taken;
    NameTree::forEach(PdfValues::entry(file.getRoot().getKey("/Names"), "/JavaScript"), "/Names",
                      [&](QPDFObjectHandle name, QPDFObjectHandle action) {
                          const QString text = FieldScripts::textOf(action);
                          if (!name.isString() || text.isEmpty() || m_texts.count(text) > 0)
                              return;
                          const FieldScripts::Names names = FieldScripts::namesIn(action);
                          const bool isTaken =
                              std::any_of(names.defined.begin(), names.defined.end(),
                                          [this](const QString& word) { return m_defined.count(word) > 0; });
                          if (isTaken || (isForeign && isForeign(names))) {
                              taken.missing.insert(names.defined.begin(), names.defined.end());
                              return;
                          }
                          m_texts.insert(text);
                          m_defined.insert(names.defined.begin(), names.defined.end());
                          taken.scripts.push_back({name.getStringValue(), action});
                      });
    return taken;
}
