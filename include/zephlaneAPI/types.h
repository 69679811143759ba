/* SPDX-License-Identifier: MIT */
/**
 * @file types.h
 * Records that several families share, and the export mark. Record layouts are part of the ABI.
 */
#ifndef ZEPHLANEAPI_TYPES_H
#define ZEPHLANEAPI_TYPES_H

#include <stddef.h>

#define ZEPHLANE_EXPORT __attribute__((visibility("default")))

/** Size of a value, field-name or member buffer: 1023 characters and the terminator. */
#define ZEPHLANE_VALUE_SIZE 1024
/** Size of an object ID buffer: the 36 characters of a UUID text and the terminator. */
#define ZEPHLANE_ID_SIZE 37

/** Object type codes; 3 is never used. */
enum ZephlaneObjectType {
  ZEPHLANE_TYPE_OTHER = 0, /**< no such key, a string, or any type not listed */
  ZEPHLANE_TYPE_HASH = 1,
  ZEPHLANE_TYPE_SET = 2,
  ZEPHLANE_TYPE_LIST = 4
};

/** One hash field. A record whose aValue is empty is skipped when a hash is written. */
typedef struct InstanceData {
  char aFieldName[ZEPHLANE_VALUE_SIZE];
  char aValue[ZEPHLANE_VALUE_SIZE];
} InstanceData;

/** One set member or list item. */
typedef struct SetData {
  char aObjectID[ZEPHLANE_VALUE_SIZE];
} SetData;

/** One hash field of any length. */
typedef struct ExtendedPair {
  char* aFieldName;
  char* aValue;
} ExtendedPair;

/** Result of a blocking pop: the list the item came from, and the item. */
typedef struct PopResult {
  char* aListKey;
  char* aItem;
} PopResult;

#endif
