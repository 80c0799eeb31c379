#pragma once

#include "PdfFixtures.h"

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>

#include <functional>

class QPDFWriter;

/// The objects of a file that is being built.
class PdfFixture::Objects {
public:
    Objects();

    [[nodiscard]] QPDFObjectHandle parse(const QByteArray& value);
    [[nodiscard]] static QByteArray reference(QPDFObjectHandle object);
    [[nodiscard]] QByteArray write(const std::function<void(QPDFWriter&)>& adjust);

    QPDF pdf;
    QByteArray pages;
    std::vector<QByteArray> pageList;
    QByteArray resources;
    QByteArray form;
    QByteArray section;      ///< of the structure tree
    QByteArray nameTree;     ///< of destinations
    QByteArray attachments;  ///< tree of names
    QByteArray names;        ///< dictionary of the name trees
    QByteArray oldNames;     ///< dictionary of destinations
    QByteArray layerDefault; ///< configuration of the layers
};
