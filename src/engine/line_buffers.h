#pragma once
// The buffers of a line layer as the tiers of create_line_buffers let them in,
// kept apart, for the overlays that need their union only near each shape.
#include <QString>
#include <memory>

#include "engine/overlay_support.h"

// The same questions, texts, yields and Cancel tests as create_line_buffers,
// whose polygon is the union of these parts. None after Cancel, after the
// answer No and after a failure, which shows create_line_buffers' message.
std::shared_ptr<overlay::PolygonSet> line_buffer_parts(const QString& sLayerFile, float sngDistance);

// Wind_Buffer_Overlay with the union of the parts as the buffer polygon.
void Wind_Buffer_Overlay(overlay::PolygonSet& buffers);
