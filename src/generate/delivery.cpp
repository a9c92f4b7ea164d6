// The three output modes. In mode 0 an existing output file is removed first, so a failed
// generation leaves no output file.
//
// SPDX-License-Identifier: MIT
#include "generate/delivery.h"

#include <utility>

#include "generate/external_converter.h"
#include "platform/platform.h"
#include "store/base/file_system.h"
#include "variant/hinted_convertors.h"

namespace rgen {
namespace {

Status convertExternally(ReportGenerator& generator, const InputParams& request,
                         const ByteVector& bytes, const sync::CancellationToken& token) {
    const std::string htmlPath = request.outputPath + ".html";
    FileRemover html(htmlPath);
    if (!writeFile(htmlPath, bytes)) return RGEN_E_CREATE_OUTPUT;
    html.arm();
    const std::string commandLine =
        converterCommandLine(htmlPath, request.converterBaseArg, request.outputPath);
    const Status status = runExternalProgram(generator, commandLine, token);
    if (status == RGEN_CANCELED) removeQuietly(request.outputPath);
    return status;
}

Status deliverFile(ReportGenerator& generator, const InputParams& request, const ByteVector& bytes,
                   const sync::CancellationToken& token) {
    const std::string& path = request.outputPath;
    if (!makeRoomForFile(path, EmptyFolder::Keep)) return RGEN_E_OVERWRITE_OUTPUT;
    if (request.outputFormat == "pdf" && request.skipExternalConversion == 0) {
        return convertExternally(generator, request, bytes, token);
    }
    return writeFile(path, bytes) ? RGEN_OK : RGEN_E_CREATE_OUTPUT;
}

Status writeAll(platform::FileHandle file, const ByteVector& bytes) {
    std::size_t written = 0;
    if (!platform::writeToFile(file, bytes.data(), bytes.size(), written)) {
        return RGEN_E_WRITE_OUTPUT;
    }
    return written == bytes.size() ? RGEN_OK : RGEN_E_WRITE_ALL_OUTPUT;
}

Status deliverDeleteOnCloseFile(const InputParams& request, const ByteVector& bytes,
                                Variant& result) {
    // On purpose: the format is ignored, a "pdf" request is delivered unconverted.
    platform::FileHandle file = nullptr;
    if (!platform::createDeleteOnCloseFile(request.outputPath, file)) return RGEN_E_CREATE_OUTPUT;
    const Status status = writeAll(file, bytes);
    if (failed(status)) {
        platform::closeFile(file);
        return status;
    }
    result.value = file;
    result.hint = VariantHint::Generic;
    result.convertor = &hvariant_private::convertorFor<void*>;
    return RGEN_OK;
}

}  // namespace

Status deliver(ReportGenerator& generator, const InputParams& request, ByteVector bytes,
               const sync::CancellationToken& token, Variant& result) {
    switch (request.outputMode) {
        case output_mode::file:
            return deliverFile(generator, request, bytes, token);
        case output_mode::deleteOnClose:
            return deliverDeleteOnCloseFile(request, bytes, result);
        case output_mode::bytes:
            result = Variant(std::move(bytes), VariantHint::Dump);
            return RGEN_OK;
        default:
            return RGEN_E_UNKNOWN_OUTPUT_MODE;
    }
}

}  // namespace rgen
