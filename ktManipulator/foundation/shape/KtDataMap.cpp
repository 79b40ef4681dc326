#include "ktManipulator/foundation/shape/KtDataMap.h"

#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

template class KtXmlMapType<KtXmlBasicType<std::string>, KtXmlBasicType<double>>;
template class KtXmlMapType<KtXmlBasicType<std::string>, KtDataMap>;

const KtToken& KtDataMap::classToken() {
  return KtGeom::KtDataMapToken;
}

const KtDataMap& KtDataMap::boundingColor() {
  static const KtDataMap theColor = [] {
    KtDataMap color;
    for (const char* light : {"Ambient", "Diffuse", "Specular", "Emission"}) {
      const bool lit = light[0] == 'A' || light[0] == 'D';
      const std::string prefix = std::string("kt") + light;
      color.add(prefix + "Red", lit ? 0.2 : 0.0);
      color.add(prefix + "Green", lit ? 0.6 : 0.0);
      color.add(prefix + "Blue", lit ? 0.9 : 0.0);
      color.add(prefix + "Alpha", 0.3);
    }
    return color;
  }();
  return theColor;
}
