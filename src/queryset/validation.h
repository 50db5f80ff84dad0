#pragma once

bool CheckInputs();
