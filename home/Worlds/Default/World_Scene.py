# Vessa47 scene: read by the engine, never run.
Object(kind='scene', name='Scene', parent=None, firstclass=True)
Object(kind='camera', name='Camera', parent='Scene', firstclass=True, position=(0.0, 1.5, -8.0))
Object(kind='light', name='Light', parent='Scene', firstclass=True, position=(2.0, 6.0, -4.0))
Object(kind='model', name='Ground', parent='Scene', firstclass=True, position=(0.0, -0.05, 0.0), size=(20.0, 0.1, 20.0), color=(0.3, 0.6, 0.25), vertex_count=8, face_count=12)
