#pragma once

#include "AnnotationDictionary.h"
#include "ObjectStore.h"

#include <functional>
#include <map>
#include <vector>

class AppearanceRecorder;
class FormFields;
class PDFAnnotation;
class PDFPage;
class SourceFiles;

/// Writes the live annotations of pages into their objects.
class PageAnnotations {
public:
    PageAnnotations(ObjectStore& objects, FormFields& form, AppearanceRecorder& recorder, SourceFiles& files,
                    AnnotationDictionary::PageLookup pages);

    /// Makes the page object's list of annotations what the live page has. `original` gives, for each place of the list
    /// in the page's source, the dictionary that stands for it in this file, or a null object for one that isn't here.
    /// Places that the program can't read are kept.
    void write(const PDFPage& page, QPDFObjectHandle pageObject, const std::vector<QPDFObjectHandle>& original);

    /// Tells of a place in the page's list in its source whether `write` is going to ask for it.
    [[nodiscard]] static std::function<bool(int place)> placesInUse(const PDFPage& page);

private:
    struct Entry {
        QPDFObjectHandle object;
        int place = -1; ///< in the source's list; -1 for one that wasn't there
    };
    [[nodiscard]] QPDFObjectHandle newAnnotation(const PDFAnnotation& annotation, QPDFObjectHandle pageObject,
                                                 int ordinal);
    [[nodiscard]] QPDFObjectHandle copyFromElsewhere(const PDFAnnotation& annotation, QPDFObjectHandle pageObject);
    void update(const PDFAnnotation& annotation, QPDFObjectHandle object, const PDFAnnotationValues& before);
    void writeLook(const PDFAnnotation& annotation, QPDFObjectHandle object, const PDFAnnotationValues* before);
    void writeButtonLook(const PDFAnnotation& annotation, QPDFObjectHandle object);
    void dropRemoved(std::vector<Entry>& entries, const std::vector<QPDFObjectHandle>& removed,
                     QPDFObjectHandle pageObject);

    ObjectStore& m_objects;
    FormFields& m_form;
    AppearanceRecorder& m_recorder;
    SourceFiles& m_files;
    AnnotationDictionary::PageLookup m_pages;
};
