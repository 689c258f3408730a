/*
 * How a QMI service is described to the client library: a service object points to a table of messages, a
 * message to a table of elements. The library encodes and decodes by these tables; nobody writes TLVs by
 * hand.
 */
#ifndef QMI_IDL_LIB_H
#define QMI_IDL_LIB_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum { QMI_IDL_REQUEST, QMI_IDL_RESPONSE, QMI_IDL_INDICATION } qmi_idl_type_of_message_type;

typedef enum {
    QMI_IDL_INTEGER, /* one unsigned integer of wire_width bytes, kept in c_width bytes */
    QMI_IDL_STRUCT,  /* the members one after another, without padding on the wire */
    QMI_IDL_ARRAY    /* items: integers of wire_width/c_width when there are no members, else structures */
} qmi_idl_kind_type;

enum {
    QMI_IDL_OPTIONAL = 1, /* may be absent; valid_offset holds a byte, 1 when it is present */
    QMI_IDL_LENIENT = 2   /* an array whose count is kept as sent, storing at most `bound` items */
};

#define QMI_IDL_NO_OFFSET UINT32_MAX

/* One element of a message (a TLV), or one member of a structure (then tlv is 0 and only its place counts).
 * All offsets count from the structure that holds the element: the message's C structure, or the array's
 * item. */
typedef struct qmi_idl_element {
    uint8_t tlv;           /* TLV type */
    uint8_t flags;         /* QMI_IDL_OPTIONAL, QMI_IDL_LENIENT */
    uint8_t kind;          /* qmi_idl_kind_type */
    uint8_t wire_width;    /* bytes of the integer, or of an array's integer item, on the wire: 1, 2, 4, 8 */
    uint8_t c_width;       /* the same in the C structure, at least wire_width */
    uint8_t prefix_width;  /* arrays: bytes of the count before the items on the wire; 0: no prefix, the items
                              fill the TLV */
    uint8_t count_width;   /* arrays: bytes of the integer at count_offset */
    uint32_t offset;       /* where the value, or the first item, lies */
    uint32_t valid_offset; /* optional elements: where the presence flag lies */
    uint32_t count_offset; /* arrays: where the item count lies. Without a prefix the count belongs to an
                              earlier element of the message, and must agree with the items that came. With
                              QMI_IDL_NO_OFFSET the array always has `bound` items */
    uint32_t bound;        /* arrays: the most items */
    uint32_t stride;       /* arrays: bytes from one item to the next in C */
    const struct qmi_idl_element* members; /* structures, and arrays of structures */
    uint32_t member_count;
} qmi_idl_element;

typedef struct {
    qmi_idl_type_of_message_type type;
    uint16_t message_id;
    uint32_t c_struct_len; /* bytes of the C structure; 0: the message has no elements */
    const qmi_idl_element* elements;
    uint32_t element_count;
} qmi_idl_message;

struct qmi_idl_service_object {
    uint32_t library_version; /* of the description's format: 6 */
    uint32_t idl_version;     /* of the interface */
    uint32_t service_id;
    uint32_t max_message_len; /* bytes of the longest encoded message, all TLVs */
    const qmi_idl_message* messages;
    uint32_t message_count;
};

/* The client library reads a service object and never changes it; it must outlive every client made with it.
 */
typedef const struct qmi_idl_service_object* qmi_idl_service_object_type;

/* The standard outcome of a request: 0 success, 1 failure; then the error tells why. On the wire TLV 0x02 of
 * two 16-bit words. */
typedef struct {
    uint32_t result;
    uint32_t error;
} qmi_response_type_v01;

/* The size in bytes of the C structure of one message. Returns 0, or non-zero with *c_struct_len 0 when the
 * service has no such message. Any thread. */
int32_t qmi_idl_get_message_c_struct_len(qmi_idl_service_object_type service,
                                         qmi_idl_type_of_message_type type, uint16_t message_id,
                                         uint32_t* c_struct_len);

#ifdef __cplusplus
}
#endif
#endif
