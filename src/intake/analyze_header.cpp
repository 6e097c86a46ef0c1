// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/analyze_header.h"

#include "base/messages.h"
#include "intake/file_bytes.h"

namespace {

// Reads the fields in order, each with its own type.
class FieldReader {
public:
    FieldReader(std::span<const uint8_t> bytes, ByteOrder order) : reader_(bytes, order) {}

    template<typename... Fields> void take(Fields&... fields) { (takeOne(fields), ...); }

private:
    void takeOne(char& field) { field = char(reader_.u8()); }
    void takeOne(int16_t& field) { field = reader_.i16(); }
    void takeOne(int32_t& field) { field = reader_.i32(); }
    void takeOne(float& field) { field = reader_.f32(); }
    // In one piece: the optimiser makes a loop over characters into one that GCC warns of.
    template<size_t count> void takeOne(std::array<char, count>& text) {
        std::ranges::copy(reader_.take(count), text.begin());
    }
    template<typename T, size_t count> void takeOne(std::array<T, count>& fields) {
        for (T& field : fields)
            takeOne(field);
    }

    ByteReader reader_;
};

bool isHeaderSize(int32_t size) {
    return size == analyzeHeaderBytes || size == 384;
}

} // namespace

bool parseAnalyzeHeader(std::span<const uint8_t> bytes, ByteOrder& order, AnalyzeHeader& header) {
    if (bytes.size() < size_t(analyzeHeaderBytes))
        return false;
    order =
        isHeaderSize(ByteReader(bytes, ByteOrder::Big).i32()) ? ByteOrder::Big : ByteOrder::Little;
    FieldReader fields(bytes, order);
    auto& [hk, dime, hist] = header;
    fields.take(hk.sizeof_hdr, hk.data_type, hk.db_name, hk.extents, hk.session_error, hk.regular,
                hk.hkey_un0);
    fields.take(dime.dim, dime.vox_units, dime.cal_units, dime.unused1, dime.datatype, dime.bitpix,
                dime.dim_un0, dime.pixdim, dime.vox_offset, dime.funused, dime.cal_max,
                dime.cal_min, dime.compressed, dime.verified, dime.glmax, dime.glmin);
    fields.take(hist.descrip, hist.aux_file, hist.orient, hist.originator, hist.generated,
                hist.scannum, hist.patient_id, hist.exp_date, hist.exp_time, hist.hist_un0,
                hist.views, hist.vols_added, hist.start_field, hist.field_skip, hist.omax,
                hist.omin, hist.smax, hist.smin);
    return true;
}

bool readAnalyzeHeader(const QString& fileName, QString& byteOrderNameOut,
                       AnalyzeHeader& headerOut) {
    FileBytes file;
    if (file.read(fileName, {.length = analyzeHeaderBytes}) != FileBytes::Result::Done) {
        showWarning("Can not open ANALYZE file !");
        return false;
    }
    ByteOrder order = ByteOrder::Little;
    if (!parseAnalyzeHeader(file.bytes(), order, headerOut)) {
        showWarning(
            QString("ERROR: File \"%1\" is too short for an ANALYZE header !").arg(fileName));
        return false;
    }
    byteOrderNameOut = order == ByteOrder::Big ? "BigEndian" : "LittleEndian";
    return true;
}
