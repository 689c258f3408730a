#include "modem_statistics_v01.h"
#include "service_tables.h"
#include "tables.h"

namespace seam {

namespace {

using FeatureRequest = vs_feature_req_msg_v01;
constexpr qmi_idl_element kFeatureRequest[] = {
    number(0x01, 4, VXK_FIELD(FeatureRequest, value)),
    optional(number(0x10, 1, VXK_FIELD(FeatureRequest, first_option)),
             VXK_FIELD(FeatureRequest, first_option_valid)),
    optional(number(0x11, 1, VXK_FIELD(FeatureRequest, second_option)),
             VXK_FIELD(FeatureRequest, second_option_valid)),
};

constexpr qmi_idl_element kFeatureResponse[] = {kResult};

constexpr qmi_idl_element kEntry[] = {
    number(2, VXK_FIELD(vs_entry_v01, sub)),
    number(2, VXK_FIELD(vs_entry_v01, type)),
    number(4, VXK_FIELD(vs_entry_v01, id)),
    lenient(byte_array(0, 2, VXK_FIELD(vs_entry_v01, value_len), VXK_FIELD(vs_entry_v01, value))),
};

using StatisticsRequest = vs_statistics_req_msg_v01;
constexpr qmi_idl_element kStatisticsRequest[] = {
    number(0x01, 2, VXK_FIELD(StatisticsRequest, sub)),
    number(0x02, 2, VXK_FIELD(StatisticsRequest, request_number)),
    list(0x03, VXK_FIELD(StatisticsRequest, entry_count), VXK_FIELD(StatisticsRequest, entries),
         sizeof(vs_entry_v01), kEntry),
};

using StatisticsResponse = vs_statistics_resp_msg_v01;
constexpr qmi_idl_element kStatisticsResponse[] = {
    kResult,
    optional(lenient(list(0x10, VXK_FIELD(StatisticsResponse, entry_count),
                          VXK_FIELD(StatisticsResponse, entries), sizeof(vs_entry_v01), kEntry)),
             VXK_FIELD(StatisticsResponse, entries_valid)),
};

constexpr qmi_idl_element kStatusIndication[] = {
    number(0x01, 4, VXK_FIELD(vs_status_ind_msg_v01, value)),
    number(0x02, 1, VXK_FIELD(vs_status_ind_msg_v01, first_flag)),
    number(0x03, 1, VXK_FIELD(vs_status_ind_msg_v01, second_flag)),
};

constexpr qmi_idl_element kReportEntry[] = {
    number(4, VXK_FIELD(vs_report_entry_v01, id)),
    number(2, VXK_FIELD(vs_report_entry_v01, first)),
    number(2, VXK_FIELD(vs_report_entry_v01, second)),
    lenient(
        byte_array(0, 2, VXK_FIELD(vs_report_entry_v01, value_len), VXK_FIELD(vs_report_entry_v01, value))),
};

using ReportIndication = vs_report_ind_msg_v01;
constexpr qmi_idl_element kReportIndication[] = {
    number(0x01, 4, VXK_FIELD(ReportIndication, value)),
    lenient(list(0x02, VXK_FIELD(ReportIndication, first_count), VXK_FIELD(ReportIndication, first),
                 sizeof(vs_report_entry_v01), kReportEntry)),
    lenient(list(0x03, VXK_FIELD(ReportIndication, second_count), VXK_FIELD(ReportIndication, second),
                 sizeof(vs_report_entry_v01), kReportEntry)),
    optional(number(0x10, 4, VXK_FIELD(ReportIndication, last)), VXK_FIELD(ReportIndication, last_valid)),
};

using BytesIndication = vs_bytes_ind_msg_v01;
constexpr qmi_idl_element kBytesIndication[] = {
    number(0x01, 4, VXK_FIELD(BytesIndication, value)),
    lenient(byte_array(0x02, 1, VXK_FIELD(BytesIndication, byte_count), VXK_FIELD(BytesIndication, bytes))),
    number(0x03, 2, VXK_FIELD(BytesIndication, first)),
    number(0x04, 2, VXK_FIELD(BytesIndication, second)),
};

constexpr qmi_idl_element kStateIndication[] = {
    number(0x01, 1, VXK_FIELD(vs_state_ind_msg_v01, state)),
};

constexpr qmi_idl_message kMessages[] = {
    message(QMI_IDL_REQUEST, VS_FEATURE_V01, sizeof(FeatureRequest), kFeatureRequest),
    message(QMI_IDL_RESPONSE, VS_FEATURE_V01, sizeof(vs_feature_resp_msg_v01), kFeatureResponse),
    message(QMI_IDL_REQUEST, VS_STATISTICS_V01, sizeof(StatisticsRequest), kStatisticsRequest),
    message(QMI_IDL_RESPONSE, VS_STATISTICS_V01, sizeof(StatisticsResponse), kStatisticsResponse),
    message(QMI_IDL_INDICATION, VS_STATUS_IND_V01, sizeof(vs_status_ind_msg_v01), kStatusIndication),
    message(QMI_IDL_INDICATION, VS_REPORT_IND_V01, sizeof(ReportIndication), kReportIndication),
    message(QMI_IDL_INDICATION, VS_BYTES_IND_V01, sizeof(BytesIndication), kBytesIndication),
    message(QMI_IDL_INDICATION, VS_STATE_IND_V01, sizeof(vs_state_ind_msg_v01), kStateIndication),
};

constexpr qmi_idl_service_object kService = service(VS_SERVICE_ID, kMessages);

}  // namespace

qmi_idl_service_object_type statistics_table() {
    return &kService;
}

}  // namespace seam
