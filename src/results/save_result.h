#pragma once

void SaveTrackingLayer();
