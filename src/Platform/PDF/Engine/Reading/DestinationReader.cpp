#include "DestinationReader.h"

#include <cmath>
#include <cstring>

namespace {

std::optional<double> number(fz_context* context, pdf_obj* object) {
    if (!pdf_is_number(context, object))
        return std::nullopt;
    const double value = double(pdf_to_real(context, object));
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

void readArray(fz_context* context, pdf_obj* array, PDFFileDestination& result) {
    pdf_obj* page = pdf_array_get(context, array, 0);
    if (pdf_is_int(context, page))
        result.pageIndex = pdf_to_int(context, page);
    else
        result.pageObject = pdf_to_num(context, page);
    const char* kind = pdf_to_name(context, pdf_array_get(context, array, 1));
    const auto at = [&](int i) { return pdf_array_get(context, array, i); };
    if (!std::strcmp(kind, "XYZ")) {
        result.x = number(context, at(2));
        result.y = number(context, at(3));
        result.zoom = number(context, at(4));
        if (result.zoom.value_or(0) <= 0)
            result.zoom.reset(); // 0 says: as it is
    } else if (!std::strcmp(kind, "FitH") || !std::strcmp(kind, "FitBH")) {
        result.y = number(context, at(2));
    } else if (!std::strcmp(kind, "FitV") || !std::strcmp(kind, "FitBV")) {
        result.x = number(context, at(2));
    } else if (!std::strcmp(kind, "FitR")) {
        result.x = number(context, at(2));
        result.y = number(context, at(5));
    }
}

} // namespace

void DestinationReader::readDestination(fz_context* context, pdf_document* document, pdf_obj* destination,
                                        PDFFileDestination& result) {
    if (pdf_is_name(context, destination) || pdf_is_string(context, destination)) {
        pdf_obj* name = destination;
        destination = pdf_lookup_dest(context, document, name);
        // Where there is an old dictionary of names, it looks nowhere else.
        if (!destination && pdf_is_string(context, name))
            destination = pdf_lookup_name(context, document, PDF_NAME(Dests), name);
    }
    if (pdf_is_dict(context, destination))
        destination = pdf_dict_get(context, destination, PDF_NAME(D));
    if (pdf_is_array(context, destination))
        readArray(context, destination, result);
}

void DestinationReader::readTarget(fz_context* context, pdf_document* document, pdf_obj* item,
                                   PDFFileDestination& result) {
    if (pdf_obj* destination = pdf_dict_get(context, item, PDF_NAME(Dest))) {
        readDestination(context, document, destination, result);
        return;
    }
    pdf_obj* action = pdf_dict_get(context, item, PDF_NAME(A));
    if (pdf_name_eq(context, pdf_dict_get(context, action, PDF_NAME(S)), PDF_NAME(GoTo)))
        readDestination(context, document, pdf_dict_get(context, action, PDF_NAME(D)), result);
}

bool DestinationReader::hasTarget(fz_context* context, pdf_obj* item) {
    return pdf_dict_get(context, item, PDF_NAME(Dest)) ||
           pdf_name_eq(context, pdf_dict_getp(context, item, "A/S"), PDF_NAME(GoTo));
}

pdf_obj* DestinationReader::uriOf(fz_context* context, pdf_obj* item) {
    pdf_obj* action = pdf_dict_get(context, item, PDF_NAME(A));
    if (!pdf_name_eq(context, pdf_dict_get(context, action, PDF_NAME(S)), PDF_NAME(URI)))
        return nullptr;
    pdf_obj* uri = pdf_dict_get(context, action, PDF_NAME(URI));
    return pdf_is_string(context, uri) ? uri : nullptr;
}
